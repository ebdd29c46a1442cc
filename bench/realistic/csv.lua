-- A CSV reader: a text of records "id,name,quantity,price" is built, then
-- read field by field; prints the record count, the total and the dearest.
local n = @N@
local parts = {}
for i = 1, n do
  parts[#parts + 1] = i .. ",item" .. (i % 100) .. "," .. (i % 7 + 1) .. "," .. (i % 50 + 10) .. ";"
end
local t = table.concat(parts)
local total, linhas, topo, maior = 0, 0, 0, ""
local q = 1
local e = string.find(t, ";", q, true)
while e do
  local p = string.find(t, ",", q, true)
  local c = string.find(t, ",", p + 1, true)
  local nome = string.sub(t, p + 1, c - 1)
  p = c
  c = string.find(t, ",", p + 1, true)
  local qtd = tonumber(string.sub(t, p + 1, c - 1))
  local preco = tonumber(string.sub(t, c + 1, e - 1))
  total = total + qtd * preco
  if qtd * preco > topo then
    topo = qtd * preco
    maior = nome
  end
  linhas = linhas + 1
  q = e + 1
  e = string.find(t, ";", q, true)
end
print(linhas)
print(math.tointeger(total))
print(maior)
