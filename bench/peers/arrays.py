n = 10000
reps = 50
L = [0] * (n + 1)
i = 0
while i < n:
    L[i] = i % 100
    i += 1
s = 0
r = 0
while r < reps:
    i = 0
    while i < n:
        s += L[i]
        i += 1
    r += 1
print(s)
