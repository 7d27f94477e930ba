# What the end-to-end tests share. Each is a script that runs in a device with the real daemons and
# ends at the first thing that is not as it should be, which it tells.
set -eu
export ASAN_OPTIONS=verify_asan_link_order=0

step() { echo "-- $*"; }

fail() {
  echo "FAILED: $*"
  exit 1
}

# The programs that a test is about, and not stand-ins for them.
needs() {
  for program; do
    [ -x "$program" ] && [ ! -L "$program" ] || fail "$program is not installed"
  done
}

# fileshare, without the seconds that the library gives to daemons: what waits for a daemon here
# waits until it is there.
fileshare() { LD_PRELOAD=/usr/local/lib/librecorded_calls.so command fileshare "$@"; }

told() { sed 's/^/    /' /tmp/told; }

# A command that is to work; what it prints is in /tmp/told.
succeeds() {
  if ! "$@" >/tmp/told 2>&1 </dev/null; then
    told
    fail "$*"
  fi
}

# A command that is to be refused, with these words.
refused() {
  words=$1
  shift
  if "$@" >/tmp/told 2>&1 </dev/null; then
    told
    fail "was not refused: $*"
  fi
  grep -qF -- "$words" /tmp/told || { told; fail "no word of \"$words\": $*"; }
}

# A file's whole content.
holds() {
  printf '%s' "$2" | cmp -s - "$1" || { cat "$1"; fail "$1 does not hold: $2"; }
}

# Tries a command until it works, for some seconds.
wait_until() {
  tries=0
  until ("$@") >/tmp/told 2>&1 </dev/null; do
    tries=$((tries + 1))
    [ $tries -lt 300 ] || { told; fail "it does not come about: $*"; }
    sleep 0.05
  done
}

answers() { nc 127.0.0.1 "$1" -e true; }

# A key and its certificate, as the set-up of a server makes them for its name.
make_certificate() {
  printf '[req]\ndistinguished_name = name\n[name]\n' >/tmp/openssl.cnf
  succeeds openssl req -x509 -newkey rsa:2048 -nodes -config /tmp/openssl.cnf -subj /CN=DiskServer \
    -addext subjectAltName=DNS:DiskServer -keyout /tmp/key -out /tmp/certificate
  cat /tmp/key /tmp/certificate >"$1"
  chmod 600 "$1"
}
