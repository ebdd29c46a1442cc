-- A records program: each record a text "name|age|city" in a table, read
-- back field by field to total the ages by city and find the oldest;
-- prints the oldest, the count and total age of each city.
local n = @N@
local rec = {}
local r = 1
for i = 0, n - 1 do
  r = (r * 17 + 5) % 1013
  rec[#rec + 1] = "P" .. i .. "|" .. (r % 80 + 10) .. "|" .. (r % 5)
end
local soma, conta = {0, 0, 0, 0, 0}, {0, 0, 0, 0, 0}
local velho, quem = 0, ""
for _, x in ipairs(rec) do
  local nome, idade, cidade = string.match(x, "([^|]*)|([^|]*)|([^|]*)")
  idade, cidade = tonumber(idade), tonumber(cidade) + 1
  soma[cidade] = soma[cidade] + idade
  conta[cidade] = conta[cidade] + 1
  if idade > velho then velho, quem = idade, nome end
end
print(quem)
print(velho)
for k = 1, 5 do
  print(conta[k])
  print(soma[k])
end
