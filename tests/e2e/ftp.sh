# inetd starts vsftpd from the files that the library wrote, and a client finds what was set.
. /usr/local/bin/e2e/common.sh
needs /usr/sbin/inetd /usr/sbin/vsftpd /usr/sbin/vsftpd.distrib \
  /usr/libexec/filesharing/pam_filesharing.so /usr/bin/curl /usr/bin/openssl

data=/harddisk/volume_1/data
alice=alice:sesame42
bob=bob:correcthorsebattery

# ftp USER:PASSWORD PATH [OPTION OF CURL...]
ftp() {
  user=$1 path=$2
  shift 2
  curl -sS -m 30 -k -u "$user" "$@" "ftp://127.0.0.1:$port/$path"
}

newline='
'

is_new() { new=$(pidof inetd) && [ "$new" != "$old" ]; }

# With its second of waiting: inetd can not take a port that the one before it has not let go of.
apply() {
  old=$(pidof inetd || :)
  succeeds command fileshare ftp apply
  wait_until is_new
}

step "A user logs in, sees the shares and nothing else, and writes as oneself"
port=21
apply
wait_until answers $port
printf 'one two three' >/tmp/take1
succeeds ftp $alice Music/take1 -T /tmp/take1
holds $data/Music/take1 'one two three'
[ "$(stat -c %U:%G:%a $data/Music/take1)" = alice:everyone:666 ] || fail "not alice's file"
succeeds ftp $alice '' -l
holds /tmp/told "$(printf 'Music\nProjects\npublic')$newline"
refused 'Server denied' ftp $alice '%2Fetc/passwd'
refused 'Server denied' ftp $alice '../../etc/passwd' --path-as-is

step "A password counts as a whole; who is deleted, the guest and who has no account stay out"
succeeds ftp $bob Music/take1
holds /tmp/told 'one two three'
refused 530 ftp bob:correcthorse ''
echo 'drum and bass' | fileshare user add dave
succeeds ftp 'dave:drum and bass' ''
succeeds fileshare user delete dave
refused 530 ftp 'dave:drum and bass' ''
refused 530 ftp guest: ''
refused 530 ftp anonymous:me ''

step "Guests and clients without an account as set; the latter only read; the bandwidth is kept to"
sed -i 's/^guest_access=.*/guest_access=yes/' /etc/CGI_ds.conf
succeeds fileshare ftp set --anonymous yes --bandwidth 100
apply
wait_until answers $port
succeeds ftp guest: ''
printf 'for everyone' >$data/public/notice
succeeds ftp anonymous:me public/notice
holds /tmp/told 'for everyone'
refused 550 ftp anonymous:me public/notice -T /tmp/take1
dd if=/dev/zero of=/tmp/song bs=1024 count=200 2>/dev/null
succeeds ftp $alice Music/song -T /tmp/song -w '%{time_total}' # the first 64 KB go at once
[ "$(sed 's/\..*//' /tmp/told)" -ge 1 ] || fail "200 KB took $(cat /tmp/told) s at 100 KB/s"

step "Another port, where connections are encrypted"
make_certificate "$(sed -n s/^rsa_cert_file=//p /etc/vsftpd.conf)"
succeeds fileshare ftp set --port 2121 --anonymous no --ssl yes --bandwidth 0
apply
port=2121
wait_until answers $port
refused '530 Non-anonymous sessions must use encryption' ftp $alice '' -v
succeeds ftp $alice Music/take1 --ssl-reqd
holds /tmp/told 'one two three'
if answers 21; then fail "vsftpd answers at its old port"; fi

step "The service is off; inetd's others stay"
succeeds fileshare ftp set --enabled no
apply
wait_until answers 23
if answers $port; then fail "vsftpd answers still"; fi
