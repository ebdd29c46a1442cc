local n = 10000
local reps = 50
local L = {}
local i = 0
while i < n do
  L[i] = i % 100
  i = i + 1
end
local s = 0
local r = 0
while r < reps do
  i = 0
  while i < n do
    s = s + L[i]
    i = i + 1
  end
  r = r + 1
end
print(s)
