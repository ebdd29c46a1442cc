n = 200000
s = 0
i = 0
WHILE i < n
  s = Soma(s, i MOD 10)
  i = i + 1
WEND
PRINT s
SYSTEM

FUNCTION Soma(a, b)
  Soma = a + b
END FUNCTION
