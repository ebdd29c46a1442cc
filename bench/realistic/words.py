# A word count: a text of words picked from eight is built, then cut into
# words at its blanks and each word counted; prints each word's count.
def main():
    n = @N@
    v = ["alpha", "beta", "gamma", "delta", "epsilon", "zeta", "eta", "theta"]
    parts = []
    r = 7
    for _ in range(n):
        r = (r * 73 + 11) % 1009
        parts.append(v[r % 8])
        parts.append(" ")
    t = "".join(parts)
    c = {}
    palavras = 0
    for w in t.split():
        c[w] = c.get(w, 0) + 1
        palavras += 1
    print(palavras)
    for w in v:
        print(w)
        print(c.get(w, 0))


main()
