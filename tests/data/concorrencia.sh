#!/bin/sh
# Two programs add 1,000 records each to one file at the same time: 2,000
# records with 2,000 distinct AutoInc values. Then a program killed while it
# adds (and most likely holds the lock) doesn't stop the next one.
# Usage: concorrencia.sh ZVRUN ZVDB
set -eu
ZVRUN=$1
ZVDB=$2
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir"

cat > soma.zvc <<'EOF'
#ZV7#
Var i Integer, n Integer
n = 1000
If CommandLine = "sem-fim"
  n = 900000
EndIf
DB Conta, dados, ""
  Codigo, AutoInc
  Origem, String, 10
EndDB
OpenDB Conta, ""
i = 0
While i < n
  Conta.Origem = CommandLine
  AddRecord Conta
  i++
Loop
CloseDB Conta
#%
EOF

falha() {
  echo "FAIL: $*"
  exit 1
}

"$ZVRUN" --headless soma.zvc -- a > a.out 2>&1 &
pa=$!
"$ZVRUN" --headless soma.zvc -- b > b.out 2>&1 &
pb=$!
wait $pa || falha "program a exited with $?"
wait $pb || falha "program b exited with $?"
[ -s a.out ] && falha "program a said: $(cat a.out)"
[ -s b.out ] && falha "program b said: $(cat b.out)"

"$ZVDB" check dados/Conta.Zvf || falha "the file is not sound"
"$ZVDB" dump dados/Conta.Zvf --csv > todos.csv
linhas=$(tail -n +2 todos.csv | wc -l)
[ "$linhas" -eq 2000 ] || falha "$linhas records instead of 2000"
codigos=$(tail -n +2 todos.csv | cut -d, -f2 | sort -u | wc -l)
[ "$codigos" -eq 2000 ] || falha "$codigos distinct AutoInc values instead of 2000"
de_a=$(tail -n +2 todos.csv | grep -c ',a$' || true)
[ "$de_a" -eq 1000 ] || falha "$de_a records of program a instead of 1000"

# A program killed in the middle of its adds.
"$ZVRUN" --headless soma.zvc -- sem-fim > c.out 2>&1 &
pc=$!
sleep 1
kill -9 $pc
wait $pc 2>/dev/null || true
timeout 60 "$ZVRUN" --headless soma.zvc -- d > d.out 2>&1 || falha "the program after the killed one didn't finish"
[ -s d.out ] && falha "program d said: $(cat d.out)"
"$ZVDB" check dados/Conta.Zvf || falha "the file is not sound after the kill"
de_d=$("$ZVDB" dump dados/Conta.Zvf --csv | grep -c ',d$' || true)
[ "$de_d" -eq 1000 ] || falha "$de_d records of program d instead of 1000"
echo "ok"
