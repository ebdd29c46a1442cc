n = 1000
A = [0] * (n + 1)
x = 1
i = 0
while i < n:
    x = (x * 75 + 74) % 65537
    A[i] = x
    i += 1
lim = n - 1
while lim > 0:
    j = 0
    while j < lim:
        if A[j] > A[j + 1]:
            A[j], A[j + 1] = A[j + 1], A[j]
        j += 1
    lim -= 1
c = 0
i = 0
while i < n:
    c = (c * 31 + A[i]) % 1000003
    i += 1
print(c)
