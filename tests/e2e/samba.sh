# Samba lets in whom the library's files let in, and lets them do what these say.
. /usr/local/bin/e2e/common.sh
needs /usr/sbin/smbd /usr/sbin/nmbd /usr/bin/smbclient /usr/bin/testparm /usr/bin/smbpasswd

denied=NT_STATUS_ACCESS_DENIED
no_login=NT_STATUS_LOGON_FAILURE
no_share=NT_STATUS_BAD_NETWORK_NAME
dave='dave%drum and bass'
fay=fay%sings-along
eve='eve%on the fence'
tapes=/harddisk/volume_1/data/tapes

# smb USER%PASSWORD SHARE COMMAND
smb() { smbclient -U "$1" "//127.0.0.1/$2" -c "$3"; }

complaints() { testparm -s 2>&1 >/dev/null | grep -iE 'unknown|error|warning|ignoring'; }

# Samba tells by the second whether a file has changed since it was read, and the library waits that
# long; here the time of the files is moved on instead.
ahead=0
samba_reads() {
  succeeds testparm -s
  if complaints; then fail "testparm complains"; fi
  ahead=$((ahead + 2))
  touch -h -d "@$(($(date +%s) + ahead))" /harddisk/volume_1/conf/smb.conf /etc/samba/user_smb.conf
}

# A change through fileshare that Samba takes up.
change() {
  succeeds fileshare "$@"
  samba_reads
}

add_user() {
  echo "$2" | fileshare user add "$1"
  change group add-user "$3" "$1"
}

step "Users, groups and a share on top of the factory's files; Samba starts with its settings"
change group add band
change group add fans
add_user dave "${dave#*%}" band
add_user fay "${fay#*%}" fans
add_user eve "${eve#*%}" staff
change share add Tapes /tapes --comment "What the band recorded"
change share grant band Tapes
change share grant fans Tapes --read-only
sed -i -e 's/^guest_access=.*/guest_access=yes/' -e 's/^recycle=.*/recycle=yes/' \
  -e 's/^disk_server_comment=.*/&, upstairs/' /etc/CGI_ds.conf
change samba set --workgroup ABCDEFGHIJKLMNOP --code-page 852 --wins yes \
  --wins-server 192.168.1.250 --printer Laser
change samba apply
wait_until answers 445
testparm -s 2>/dev/null | tr -d '\t' >/tmp/effective
for line in 'workgroup = ABCDEFGHIJKLMNOP' 'dos charset = CP852' 'wins server = 192.168.1.250' \
  'printer name = Laser' 'server string = Network disk server, upstairs' 'username map = no' \
  'valid users = @administrators @band @fans' 'write list = @administrators @band'; do
  grep -qxF "$line" /tmp/effective || fail "testparm -s does not print $line"
done

step "A group with code 7 writes and reads, one with code 5 reads, all others stay out"
printf 'one two three' >/tmp/take1
succeeds smb "$dave" Tapes 'put /tmp/take1 take1'
holds $tapes/take1 'one two three'
succeeds smb "$dave" Tapes 'get take1 /tmp/dave'
holds /tmp/dave 'one two three'
succeeds smb "$fay" Tapes 'get take1 /tmp/fay'
holds /tmp/fay 'one two three'
refused $denied smb "$fay" Tapes 'put /tmp/take1 take2'
[ ! -e $tapes/take2 ] || fail "a refused file is there"
refused $denied smb "$eve" Tapes ls

step "What is deleted goes to the recycle bin"
succeeds smb "$dave" Tapes 'del take1'
holds $tapes/.recycle/take1 'one two three'
succeeds smb "$dave" Tapes 'put /tmp/take1 take1'

step "A password counts as a whole, also behind its 8th character"
refused $no_login smb 'dave%drum and brass' Tapes ls
refused $no_login smb 'dave%drum and' Tapes ls
refused $denied smb % Tapes ls

step "The group is renamed, then the share: access follows"
change group rename band orchestra
succeeds smb "$dave" Tapes 'put /tmp/take1 take3'
change group add-user orchestra eve
succeeds smb "$eve" Tapes 'put /tmp/take1 take4'
change share rename Tapes Reels
refused $no_share smb "$dave" Tapes ls
succeeds smb "$dave" Reels 'put /tmp/take1 take5'
holds $tapes/take5 'one two three'
succeeds smb "$fay" Reels 'get take5 /tmp/fay'
refused $denied smb "$fay" Reels 'put /tmp/take1 take6'

step "A user is renamed, with the same password; a password is changed"
# A name that is no user's is the guest's, whom this share's groups keep out.
change user rename eve eva
refused $denied smb "$eve" Reels ls
succeeds smb 'eva%on the fence' Reels ls
printf 'a new password\n' | fileshare user set-password eva
refused $no_login smb 'eva%on the fence' Reels ls
succeeds smb 'eva%a new password' Reels ls

step "What is taken away is gone: a user, access, the share; the files stay"
add_user gus hums-along fans
succeeds smb gus%hums-along Reels ls
change share revoke fans Reels
refused $denied smb gus%hums-along Reels ls
change share grant fans Reels
succeeds smb "$fay" Reels 'put /tmp/take1 take6'
change user delete fay
refused $denied smb "$fay" Reels ls
change group remove-user orchestra eva
refused $denied smb 'eva%a new password' Reels ls
change share delete Reels
refused $no_share smb "$dave" Reels ls
holds $tapes/take5 'one two three'

step "A USB disk that is mounted read-only is served so, until it is taken out"
stick=/harddisk/volume_3/data/FLASH_1_1
mkdir -p $stick
mount -t tmpfs -o mode=777 stick $stick
printf sunset >$stick/photo
mount -o remount,ro $stick
change share removable-add FLASH 1
succeeds smb "$dave" FLASH_1_1 'get photo /tmp/photo'
holds /tmp/photo sunset
refused NT_STATUS smb "$dave" FLASH_1_1 'put /tmp/photo other'
change share removable-remove FLASH 1 1
refused $no_share smb "$dave" FLASH_1_1 ls
