#!/bin/sh
# Two programs on one connection: a second ListenP2P on the same port starts
# over; sends before the connection is up fail in a box; the accepted peer
# replaces the listener, so a second peer finds nobody; texts arrive whole.
# Usage: p2p.sh ZVRUN
set -eu
ZVRUN=$1
dir=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$dir"' EXIT
cd "$dir"
porta=$((20000 + $$ % 20000))

cat > escuta.zvc <<EOF
' listens twice, answers the first peer
Var got String
RetStr = ""
ListenP2P $porta
ListenP2P $porta
Write "listening"
While StrPos(got, "end") = 0
  Wait 10
  got = JoinStr(got, RetStr)
  RetStr = ""
Loop
Write ReferenceValue
Write got
SendP2P "ok"
Wait 1500
EOF
cat > conecta.zvc <<EOF
' connects and sends in pieces
SendP2P "early"
ConnectP2P "127.0.0.1", $porta
Wait 500
SendP2P "a;"
SendP2P "b;end"
RetStr = ""
While RetStr = ""
  Wait 10
Loop
Write RetStr
EOF
cat > segundo.zvc <<EOF
' a second peer, after the first was accepted
ConnectP2P "127.0.0.1", $porta
Wait 500
SendP2P "nobody"
EOF

"$ZVRUN" --headless --config-dir "$dir" escuta.zvc > escuta.out 2>&1 &
i=0
until grep -q listening escuta.out; do
  i=$((i + 1)); [ $i -lt 100 ] || { echo "the listener never listened"; cat escuta.out; exit 1; }
  sleep 0.1
done
"$ZVRUN" --headless --config-dir "$dir" conecta.zvc > conecta.out 2>&1
"$ZVRUN" --headless --config-dir "$dir" segundo.zvc > segundo.out 2>&1
wait

falha() { echo "$1"; for f in escuta conecta segundo; do echo "--- $f"; cat $f.out; done; exit 1; }
grep -q '"text":"Editor: 0 Line: 2\\rError in command SendP2P: Wrong protocol' conecta.out || falha "a send before connecting isn't refused"
grep -qx 'ok' conecta.out || falha "the listener's answer didn't arrive"
grep -qx '127.0.0.1' escuta.out || falha "ReferenceValue isn't the peer's address"
grep -qx 'a;b;end' escuta.out || falha "the pieces don't make the whole text"
grep -q 'Error in command SendP2P' segundo.out || falha "a second peer was accepted"
echo "p2p: ok"
