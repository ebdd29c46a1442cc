# A CSV reader: a text of records "id,name,quantity,price" is built, then
# read field by field; prints the record count, the total and the dearest.
def main():
    n = @N@
    parts = []
    for i in range(1, n + 1):
        parts.append(f"{i},item{i % 100},{i % 7 + 1},{i % 50 + 10};")
    t = "".join(parts)
    total = linhas = topo = 0
    maior = ""
    q = 0
    e = t.find(";", q)
    while e >= 0:
        p = t.find(",", q)
        c = t.find(",", p + 1)
        nome = t[p + 1:c]
        p = c
        c = t.find(",", p + 1)
        qtd = int(t[p + 1:c])
        preco = int(t[c + 1:e])
        total += qtd * preco
        if qtd * preco > topo:
            topo = qtd * preco
            maior = nome
        linhas += 1
        q = e + 1
        e = t.find(";", q)
    print(linhas)
    print(total)
    print(maior)


main()
