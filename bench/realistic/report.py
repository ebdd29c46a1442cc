# A report builder: one line per sale, with its quantity, price and amount,
# appended to the report text; prints the report's length, its total and
# its last line.
def main():
    n = @N@
    r = ["Sales report;"]
    soma = 0
    linha = ""
    for i in range(1, n + 1):
        q = i % 9 + 1
        preco = i % 40 + 5
        valor = q * preco
        soma += valor
        linha = f"Sale {i}: {q} x {preco} = {valor};"
        r.append(linha)
    r.append(f"Total: {soma}")
    print(len("".join(r)))
    print(soma)
    print(linha)


main()
