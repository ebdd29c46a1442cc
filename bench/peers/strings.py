n = 20000
t = ""
i = 0
while i < n:
    if i % 3 == 0:
        t += "x"
    else:
        t += "y"
    i += 1
k = 0
r = ""
i = 1
while i <= n:
    c = t[i - 1:i]
    if c == "x":
        k += 1
    r = r + c + ","
    i += 1
k = k + len(r)
print(k)
