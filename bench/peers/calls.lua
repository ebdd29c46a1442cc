local function soma(a, b)
  return a + b
end

local n = 200000
local s = 0
local i = 0
while i < n do
  s = soma(s, i % 10)
  i = i + 1
end
print(s)
