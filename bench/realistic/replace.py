# A search and replace over a long text: every "cat" becomes "dog" in
# place, then every "dog" is written out as "mouse" into a new text; prints
# how many were replaced, the new text's length and its last fifteen
# characters.
def main():
    n = @N@
    w = ["the ", "cat ", "sat on ", "a mat "]
    parts = []
    r = 3
    for _ in range(n):
        r = (r * 31 + 7) % 997
        parts.append(w[r % 4])
    t = "".join(parts)
    vezes = t.count("cat")
    t = t.replace("cat", "dog")
    u = t.replace("dog", "mouse")
    print(vezes)
    print(len(u))
    print(u[-15:])


main()
