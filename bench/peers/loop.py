n = 1000000
s = 0
i = 0
while i < n:
    s += i % 7
    i += 1
print(s)
