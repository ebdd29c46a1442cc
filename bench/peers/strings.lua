local n = 20000
local t = ""
local i = 0
while i < n do
  if i % 3 == 0 then
    t = t .. "x"
  else
    t = t .. "y"
  end
  i = i + 1
end
local k = 0
local r = ""
i = 1
while i <= n do
  local c = string.sub(t, i, i)
  if c == "x" then
    k = k + 1
  end
  r = r .. c .. ","
  i = i + 1
end
k = k + #r
print(k)
