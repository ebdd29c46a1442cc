#!/bin/sh
# FTP transfers against the small local server: a download into the
# program's folder, an upload, a missing remote file (the old local file
# kept), a wrong password, a missing local file, a transfer before
# ConnectFTP, a server that isn't there.
# Usage: ftp.sh ZVRUN SERVER
set -eu
ZVRUN=$1
SERVIDOR=$2
dir=$(mktemp -d)
trap 'kill $pid 2>/dev/null || true; rm -rf "$dir"' EXIT
mkdir -p "$dir/server/docs" "$dir/prog"
printf 'hello from the server\n' > "$dir/server/docs/hello.txt"
printf 'kept\n' > "$dir/prog/old.txt"
printf 'to upload\n' > "$dir/prog/up.txt"

"$SERVIDOR" "$dir/server" 0 demo secret > "$dir/server.out" &
pid=$!
i=0
until grep -q ready "$dir/server.out"; do
  i=$((i + 1)); [ $i -lt 100 ] || { echo "the server didn't start"; exit 1; }
  sleep 0.1
done
porta=$(sed -n 's/ready //p' "$dir/server.out")

cat > "$dir/prog/ftp.zvc" <<EOF
' transfers
Var r String
r = DownFileFTP("docs/hello.txt", "hello.txt")
Write r
ConnectFTP "127.0.0.1:$porta", "demo", "secret"
r = DownFileFTP("docs/hello.txt", "hello.txt")
Write r
r = UpFileFTP("up.txt", "docs/up copy.txt")
Write r
r = DownFileFTP("docs/none.txt", "old.txt")
Write r
r = UpFileFTP("nowhere.txt", "x.txt")
ConnectFTP "127.0.0.1:$porta", "demo", "wrong"
r = DownFileFTP("docs/hello.txt", "other.txt")
Write r
ConnectFTP "127.0.0.1:1", "demo", "secret"
r = DownFileFTP("docs/hello.txt", "other.txt")
Write r
EOF
cd "$dir"
"$ZVRUN" --headless --config-dir "$dir" prog/ftp.zvc > out.txt 2>&1 || true

falha() { echo "$1"; echo "--- output"; cat out.txt; exit 1; }
grep -q 'Error in command DownFileFTP: no server: ConnectFTP first' out.txt || falha "a transfer before ConnectFTP isn't refused"
[ "$(sed -n 3p out.txt)" = "226 Transfer complete." ] || falha "the download's reply"
cmp -s server/docs/hello.txt prog/hello.txt || falha "the downloaded file differs"
[ "$(sed -n 4p out.txt)" = "226 Transfer complete." ] || falha "the upload's reply"
cmp -s prog/up.txt "server/docs/up copy.txt" || falha "the uploaded file differs (a name with a blank)"
[ "$(sed -n 5p out.txt)" = "550 No such file." ] || falha "a missing remote file's reply"
[ "$(cat prog/old.txt)" = "kept" ] || falha "a failed download touched the local file"
[ ! -e prog/old.txt.part ] || falha "a failed download left its partial file"
grep -q 'Error in command UpFileFTP: File not found: nowhere.txt' out.txt || falha "a missing local file isn't reported"
[ "$(sed -n 7p out.txt)" = "530 Login incorrect." ] || falha "a wrong password's reply"
[ ! -e prog/other.txt ] || falha "a refused login left a file"
sed -n 8p out.txt | grep -qi "connect" || falha "a server that isn't there"
echo "ftp: ok"
