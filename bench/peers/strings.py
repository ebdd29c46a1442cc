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
i = 1
while i <= n:
    if t[i - 1:i] == "x":
        k += 1
    i += 1
print(k)
