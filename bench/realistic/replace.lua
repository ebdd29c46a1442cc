-- A search and replace over a long text: every "cat" becomes "dog" in
-- place, then every "dog" is written out as "mouse" into a new text; prints
-- how many were replaced, the new text's length and its last fifteen
-- characters.
local n = @N@
local w = {"the ", "cat ", "sat on ", "a mat "}
local parts = {}
local r = 3
for _ = 1, n do
  r = (r * 31 + 7) % 997
  parts[#parts + 1] = w[r % 4 + 1]
end
local t = table.concat(parts)
local vezes
t, vezes = string.gsub(t, "cat", "dog")
local u = string.gsub(t, "dog", "mouse")
print(vezes)
print(#u)
print(string.sub(u, -15))
