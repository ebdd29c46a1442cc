local n = 1000
local A = {}
local x = 1
local i = 0
while i < n do
  x = (x * 75 + 74) % 65537
  A[i] = x
  i = i + 1
end
local lim = n - 1
while lim > 0 do
  local j = 0
  while j < lim do
    local k = j + 1
    local t, u = A[j], A[k]
    if t > u then
      A[j], A[k] = u, t
    end
    j = j + 1
  end
  lim = lim - 1
end
local c = 0
i = 0
while i < n do
  c = (c * 31 + A[i]) % 1000003
  i = i + 1
end
print(c)
