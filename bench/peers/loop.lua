local n = 1000000
local s = 0
local i = 0
while i < n do
  s = s + i % 7
  i = i + 1
end
print(s)
