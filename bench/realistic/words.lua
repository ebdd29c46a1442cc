-- A word count: a text of words picked from eight is built, then cut into
-- words at its blanks and each word counted; prints each word's count.
local n = @N@
local v = {"alpha", "beta", "gamma", "delta", "epsilon", "zeta", "eta", "theta"}
local parts = {}
local r = 7
for _ = 1, n do
  r = (r * 73 + 11) % 1009
  parts[#parts + 1] = v[r % 8 + 1]
  parts[#parts + 1] = " "
end
local t = table.concat(parts)
local c, palavras = {}, 0
for w in string.gmatch(t, "%S+") do
  c[w] = (c[w] or 0) + 1
  palavras = palavras + 1
end
print(palavras)
for _, w in ipairs(v) do
  print(w)
  print(c[w] or 0)
end
