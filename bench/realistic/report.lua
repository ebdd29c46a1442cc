-- A report builder: one line per sale, with its quantity, price and amount,
-- appended to the report text; prints the report's length, its total and
-- its last line.
local n = @N@
local r = {"Sales report;"}
local soma, linha = 0, ""
for i = 1, n do
  local q = i % 9 + 1
  local preco = i % 40 + 5
  local valor = q * preco
  soma = soma + valor
  linha = "Sale " .. i .. ": " .. q .. " x " .. preco .. " = " .. valor .. ";"
  r[#r + 1] = linha
end
r[#r + 1] = "Total: " .. soma
print(#table.concat(r))
print(soma)
print(linha)
