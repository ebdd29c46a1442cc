# A records program: each record a text "name|age|city" in a list, read
# back field by field to total the ages by city and find the oldest;
# prints the oldest, the count and total age of each city.
def main():
    n = @N@
    rec = []
    r = 1
    for i in range(n):
        r = (r * 17 + 5) % 1013
        rec.append(f"P{i}|{r % 80 + 10}|{r % 5}")
    soma = [0] * 5
    conta = [0] * 5
    velho, quem = 0, ""
    for x in rec:
        nome, idade, cidade = x.split("|")
        idade, k = int(idade), int(cidade)
        soma[k] += idade
        conta[k] += 1
        if idade > velho:
            velho, quem = idade, nome
    print(quem)
    print(velho)
    for k in range(5):
        print(conta[k])
        print(soma[k])


main()
