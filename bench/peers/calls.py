def soma(a, b):
    return a + b

n = 200000
s = 0
i = 0
while i < n:
    s = soma(s, i % 10)
    i += 1
print(s)
