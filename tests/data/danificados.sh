#!/bin/sh
# Damaged record files as a program meets them. One table of named variants,
# each a few bytes written over a sound file of five records (or a new
# length). For each: a program runs the DB block, OpenDB, ReadRecord of every
# record, AddRecord, UpdateRecord, DeleteRecord and CompactDB; its first box
# must say what is wrong, and the file must keep every byte. Then zvdb repair
# mends it, zvdb check passes, and the records that read are still there.
# Usage: danificados.sh ZVRUN ZVDB
set -eu
ZVRUN=$1
ZVDB=$2
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir"

falha() {
  echo "FAIL ($variante): $*"
  exit 1
}

cat > cria.zvc <<'EOF'
#ZV7#
DB Agenda, dados, ""
  Codigo, AutoInc
  Nome, String, 10
  Saldo, Decimal
EndDB
OpenDB Agenda, ""
Agenda.Nome = "Ana"; Agenda.Saldo = 1; AddRecord Agenda
Agenda.Nome = "Bia"; Agenda.Saldo = 2; AddRecord Agenda
Agenda.Nome = "Caio"; Agenda.Saldo = 3; AddRecord Agenda
Agenda.Nome = "Davi"; Agenda.Saldo = 4; AddRecord Agenda
Agenda.Nome = "Eva"; Agenda.Saldo = 5; AddRecord Agenda
#%
EOF
cat > usa.zvc <<'EOF'
#ZV7#
Var L String, i Integer, n Integer
DB Agenda, dados, ""
  Codigo, AutoInc
  Nome, String, 10
  Saldo, Decimal
EndDB
OpenDB Agenda, ""
n = TotalRecordsDB(Agenda)
i = 0
While i < n
  L = ReadRecord(Agenda, i)
  i++
Loop
Agenda.Nome = "Novo"
AddRecord Agenda
UpdateRecord Agenda, 0
DeleteRecord Agenda, 1
CompactDB Agenda
#%
EOF
"$ZVRUN" --headless cria.zvc > cria.out 2>&1
[ -s cria.out ] && { variante=cria; falha "the program said: $(cat cria.out)"; }
cp dados/Agenda.Zvf sao.Zvf

# Records are 37 bytes (9 + 15 + 13) from offset 19999; record 3 starts at
# 20110, its Nome slot at 20119, its Saldo slot at 20134.
R3=20110
NOME3=20119
SALDO3=20134

# Writes hex bytes (as printf escapes) at an offset.
poe() { printf "$2" | dd of=dados/Agenda.Zvf bs=1 seek="$1" conv=notrunc 2>/dev/null; }

# Each variant: name | what is done to the file | the first box's text |
# records a repair keeps | of them deleted.
while IFS='|' read -r variante acao texto mantidos apagados; do
  [ -z "$variante" ] && continue
  rm -rf dados && mkdir dados && cp sao.Zvf dados/Agenda.Zvf
  eval "$acao"
  antes=$(sha256sum dados/Agenda.Zvf | cut -d' ' -f1)
  "$ZVRUN" --headless usa.zvc > usa.out 2>&1 || falha "zvrun exited with $?: $(cat usa.out)"
  depois=$(sha256sum dados/Agenda.Zvf | cut -d' ' -f1)
  [ "$antes" = "$depois" ] || falha "the file changed: $(cat usa.out)"
  head -n 1 usa.out | grep -qF "$texto" || falha "the first box: $(head -n 1 usa.out)"
  grep -q 'written to it\|damaged' usa.out || falha "no write was refused: $(cat usa.out)"
  [ "$(ls dados)" = "Agenda.Zvf" ] || falha "the folder holds $(ls dados)"

  status=0
  "$ZVDB" check dados/Agenda.Zvf > check.out || status=$?
  [ $status -eq 1 ] || falha "check exited with $status: $(cat check.out)"
  status=0
  "$ZVDB" repair dados/Agenda.Zvf --declared usa.zvc > repair.out || status=$?
  [ $status -eq 0 ] || falha "repair exited with $status: $(cat repair.out)"
  cmp -s dados/Agenda.Zvf.damaged sao.Zvf && falha "the copy kept is the sound file"
  [ "$(sha256sum dados/Agenda.Zvf.damaged | cut -d' ' -f1)" = "$antes" ] || falha "the copy kept isn't the damaged file"
  "$ZVDB" check dados/Agenda.Zvf > check2.out || falha "check after repair: $(cat check2.out) / $(cat repair.out)"
  grep -q "sound ($mantidos records, $apagados deleted)" check2.out ||
    falha "after repair: $(cat check2.out) / $(cat repair.out)"
  # The names that were sound read as before.
  "$ZVDB" dump dados/Agenda.Zvf > dump.out
  for nome in Ana Bia; do
    [ "$mantidos" -ge 2 ] || break
    grep -q "	$nome	" dump.out || falha "$nome was lost: $(cat dump.out)"
  done
  # And the program now runs without a word about damage.
  "$ZVRUN" --headless usa.zvc > usa2.out 2>&1
  grep -q damaged usa2.out && falha "after repair the program said: $(cat usa2.out)"
  echo "ok $variante"
done <<'EOF'
truncated|truncate -s 20050 dados/Agenda.Zvf|its count says 5 records, but the file holds only 1|1|0
cut mid-record|truncate -s 20120 dados/Agenda.Zvf|its count says 5 records, but the file holds only 3|3|0
last byte dropped|truncate -s 20183 dados/Agenda.Zvf|its count says 5 records, but the file holds only 4|4|0
trailing bytes|printf 'garbage' >> dados/Agenda.Zvf|7 bytes behind its last record don't make whole records of 37 bytes|5|0
field length 0|poe $NOME3 '\000\000\000\000'|the field 'Nome' of its record 3 can't be read|5|1
field length huge|poe $NOME3 '\377\377\377\177'|the field 'Nome' of its record 3 can't be read|5|1
field longer than its slot|poe $NOME3 '\020\000\000\000'|the field 'Nome' of its record 3 can't be read|5|1
bad key byte|poe $((NOME3 + 4)) '\001'|the field 'Nome' of its record 3 can't be read|5|1
short decimal|poe $SALDO3 '\003\000\000\000'|the field 'Saldo' of its record 3 can't be read|5|1
zeroed record|dd if=/dev/zero of=dados/Agenda.Zvf bs=1 seek=$R3 count=37 conv=notrunc 2>/dev/null|the field 'Codigo' of its record 3 can't be read|5|1
zeroed last record|dd if=/dev/zero of=dados/Agenda.Zvf bs=1 seek=$((R3 + 37)) count=37 conv=notrunc 2>/dev/null|the field 'Codigo' of its record 4 can't be read|5|1
garbled lock byte|poe 0 'x'|its lock byte is neither|5|0
garbled count|poe 1 'zzzz'|its record count can't be read|5|0
garbled record size|poe 37 'zzzz'|its record size can't be read|5|0
garbled name|poe 12 '\000\000\000\000'|its database name can't be read|5|0
garbled stamp|poe 79 '\377\377\377\377'|its declaration stamp can't be read|5|0
garbled field table|poe 1047 'zzzz'|the name of its field 2 can't be read|5|0
zeroed header|dd if=/dev/zero of=dados/Agenda.Zvf bs=1 count=1200 conv=notrunc 2>/dev/null|its lock byte is neither|5|0
EOF
echo ok
