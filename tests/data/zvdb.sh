#!/bin/sh
# zvdb on a file a program wrote, and on damaged copies of it.
# Usage: zvdb.sh ZVRUN ZVDB
set -eu
ZVRUN=$1
ZVDB=$2
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir"

falha() {
  echo "FAIL: $*"
  exit 1
}

cat > cria.zvc <<'EOF'
#ZV7#
DB Agenda, dados, "pw"
  Codigo, AutoInc
  Nome, String, 20
  Saldo, Decimal
EndDB
OpenDB Agenda, "pw"
Agenda.Nome = "Ana, Lu"; Agenda.Saldo = 1.5; AddRecord Agenda
Agenda.Nome = "José"; Agenda.Saldo = -2; AddRecord Agenda
Agenda.Nome = "Bia"; Agenda.Saldo = 0; AddRecord Agenda
DeleteRecord Agenda, 2
#%
EOF
"$ZVRUN" --headless cria.zvc > cria.out 2>&1
[ -s cria.out ] && falha "the program said: $(cat cria.out)"
f=dados/Agenda.Zvf

"$ZVDB" info $f > info.out || falha "info exited with $?"
grep -q '^Database: *Agenda$' info.out || falha "info: $(cat info.out)"
grep -q '^Records: *3 (1 deleted)$' info.out || falha "info: $(cat info.out)"
grep -q '^Password: *set$' info.out || falha "info: $(cat info.out)"
grep -q 'Nome *String *20 *10 *25$' info.out || falha "info: $(cat info.out)"

"$ZVDB" dump $f --json > dump.json
[ "$(sed -n 2p dump.json)" = '{"record":1,"deleted":false,"fields":{"Codigo":1,"Nome":"José","Saldo":-2}}' ] ||
  falha "json: $(cat dump.json)"
[ "$(sed -n 3p dump.json)" = '{"record":2,"deleted":true}' ] || falha "json: $(cat dump.json)"
"$ZVDB" dump $f --csv > dump.csv
[ "$(sed -n 2p dump.csv)" = '0,0,"Ana, Lu",1.5' ] || falha "csv: $(cat dump.csv)"
[ "$(wc -l < dump.csv)" -eq 3 ] || falha "csv: $(cat dump.csv)"
"$ZVDB" check $f > check.out || falha "check of a sound file exited with $?"

# A count beyond the file's length.
cp $f dados/Curto.Zvf
truncate -s 20050 dados/Curto.Zvf
status=0
"$ZVDB" check dados/Curto.Zvf > curto.out || status=$?
[ $status -eq 1 ] || falha "check of a cut file exited with $status"
grep -q "count says 3 records, but the file holds only 1" curto.out || falha "check: $(cat curto.out)"

# A record whose stored value was overwritten: reported, the others read.
cp $f dados/Mexido.Zvf
printf 'zzzz' | dd of=dados/Mexido.Zvf bs=1 seek=$((19999 + 47 + 10)) conv=notrunc 2>/dev/null
cp dados/Mexido.Zvf antes.Zvf
status=0
"$ZVDB" check dados/Mexido.Zvf > mexido.out || status=$?
[ $status -eq 1 ] || falha "check of a damaged record exited with $status"
grep -q "the field 'Nome' of its record 1 can't be read" mexido.out || falha "check: $(cat mexido.out)"
status=0
"$ZVDB" dump dados/Mexido.Zvf > mexido.txt 2> mexido.err || status=$?
[ $status -eq 1 ] || falha "dump of a damaged record exited with $status"
[ "$(wc -l < mexido.txt)" -eq 3 ] || falha "dump: $(cat mexido.txt)"
cmp -s dados/Mexido.Zvf antes.Zvf || falha "zvdb changed the file"

# The header against the DB block that declares it.
"$ZVDB" check $f --declared cria.zvc > decl.out || falha "check against its own block: $(cat decl.out)"
status=0
"$ZVDB" check $f --declared "DB Agenda, dados, \"pw\"; Codigo, AutoInc; Nome, String, 25; Saldo, Decimal" \
  > decl.out || status=$?
[ $status -eq 1 ] || falha "check against another block exited with $status"
grep -q "differs: field 2: the header has 'Nome, String, 20', the DB block declares 'Nome, String, 25'" decl.out ||
  falha "check: $(cat decl.out)"
grep -q "differs: the header's record size is 47 bytes, the DB block's fields make 52" decl.out ||
  falha "check: $(cat decl.out)"
status=0
"$ZVDB" check $f --declared "Codigo, Auto" > decl.out 2>&1 || status=$?
[ $status -eq 2 ] || falha "a declaration without a type exited with $status"

# A whole record behind the count (UpdateRecord at the count leaves one) is
# told, not damage; repair leaves such a file alone.
cp $f dados/Atras.Zvf
dd if=$f bs=1 skip=19999 count=47 2>/dev/null >> dados/Atras.Zvf
"$ZVDB" check dados/Atras.Zvf > atras.out || falha "check of a record behind the count: $(cat atras.out)"
grep -q "47 bytes (1 whole records) lie behind the last counted record" atras.out || falha "check: $(cat atras.out)"
"$ZVDB" repair dados/Atras.Zvf > atras.out || falha "repair: $(cat atras.out)"
grep -q "sound; nothing to repair" atras.out || falha "repair: $(cat atras.out)"

# Repair of the overwritten record: it stands deleted, the others keep
# their numbers, and the damaged file is kept beside.
"$ZVDB" repair dados/Mexido.Zvf > repair.out || falha "repair exited with $?"
grep -q "the field 'Nome' of its record 1 can't be read: its values are dropped and it stands as deleted" repair.out ||
  falha "repair: $(cat repair.out)"
cmp -s dados/Mexido.Zvf.damaged antes.Zvf || falha "the damaged file wasn't kept"
"$ZVDB" check dados/Mexido.Zvf > check.out || falha "check after repair: $(cat check.out)"
"$ZVDB" dump dados/Mexido.Zvf --json > repaired.json
[ "$(sed -n 1p repaired.json)" = '{"record":0,"deleted":false,"fields":{"Codigo":0,"Nome":"Ana, Lu","Saldo":1.5}}' ] &&
  [ "$(sed -n 2p repaired.json)" = '{"record":1,"deleted":true}' ] || falha "dump after repair: $(cat repaired.json)"

status=0
"$ZVDB" info dados/Nada.Zvf 2> nada.err || status=$?
[ $status -eq 2 ] || falha "info of a missing file exited with $status"
echo ok
