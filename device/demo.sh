#!/bin/busybox sh
# The library at its work, on the reference device's own files: one function a subject.
set -eu

title() { printf '\n== %s\n' "$*"; }

# A command as one would type it, and what it prints.
try() {
  printf '\n$ %s\n' "$*"
  sh -c "$*"
}

# The same, for one that is refused.
try_in_vain() {
  printf '\n$ %s\n' "$*"
  if sh -c "$*" 2>&1; then exit 1; fi
}

users() {
  title "Users: who they are is spread over four files"
  try cat /etc/passwd
  try cat /etc/usrgrp.info
  title "The library puts them together"
  try fileshare user list
  try fileshare user show bob
  title "A password of more than 8 characters is stored as two hashes, in the fields 2 and 6"
  try grep ^bob: /etc/passwd
  try "echo correcthorsebattery | fileshare user check-password bob"
  try_in_vain "echo correcthorse | fileshare user check-password bob"
}

# Shows what a step, "try COMMAND" or "try_in_vain COMMAND", changes in each account file.
compare() {
  mkdir -p /tmp/before
  for file in passwd group usrgrp.info samba/smbpasswd; do
    cp "/etc/$file" "/tmp/before/${file##*/}"
  done
  "$@"
  for file in passwd group usrgrp.info samba/smbpasswd; do
    diff -U 0 "/tmp/before/${file##*/}" "/etc/$file" |
      sed -n -e "1s|.*|  in /etc/$file:|p" -e '/^[-+][-+]/d' -e '/^@/d' -e 's/^[-+]/    &/p'
  done
}

life_of_a_user() {
  title "A user's life: what each step changes in the account files"
  compare try "echo word-77 | fileshare user add dave --description 'Dave Miller' --quota 250 --group staff --group family"
  try "cat /tmp/edquota.tmp"
  try "echo word-77 | fileshare user check-password dave"
  compare try "fileshare user update dave --description 'David Miller' --quota 500"
  compare try "echo long-password | fileshare user set-password dave"
  compare try "fileshare user rename dave david"
  try "fileshare user show david"
  title "A name that is taken is refused in any letter case; then the user goes again"
  compare try_in_vain "fileshare user rename david Alice"
  compare try "fileshare user delete david"
}

shares() {
  title "A folder is shared: a user, a group, and a share that the group may use"
  try "echo word-77 | fileshare user add erin"
  try fileshare group add cinema
  try fileshare group add-user cinema erin
  try "fileshare share add Films /Films --comment 'Holiday films'"
  try fileshare share grant cinema Films
  try fileshare share list
  title "Every place that carries the share agrees: registry, volume, Samba, AFP"
  try grep ^Films= /etc/share.info /harddisk/volume_1/conf/share.info
  try "sed -n '/^\\[Films\\]/,\$p' /etc/samba/smb.conf"
  try "grep '\\[Films\\]' /etc/netatalk/AppleVolumes.conf"
}

has_samba() { [ ! -L /usr/sbin/smbd ] && [ -x /usr/bin/smbclient ] && [ -x /usr/bin/testparm ]; }

samba_serves() {
  title "Samba itself serves the share"
  if ! has_samba; then
    echo "left out: Samba is not installed on this machine (packages samba, smbclient)"
    return
  fi
  try "testparm -s --section-name=Films 2>/dev/null"
  try smbd -D
  timeout 20 sh -c 'until smbclient -N -L //127.0.0.1 >/dev/null 2>&1; do sleep 1; done'
  title "A user of the group writes a file"
  try "echo 'one two three' > /tmp/reel1"
  try "smbclient -U erin%word-77 //127.0.0.1/Films -c 'put /tmp/reel1 reel1; ls'"
  try ls -l /harddisk/volume_1/data/Films
  title "A stranger stays out"
  try_in_vain "smbclient -U bob%correcthorsebattery //127.0.0.1/Films -c ls"
}

access_taken_away() {
  title "Taking access away rewrites the AFP line in another form"
  try fileshare share revoke cinema Films
  try "grep '\\[Films\\]' /etc/netatalk/AppleVolumes.conf"
  if has_samba; then try_in_vain "smbclient -U erin%word-77 //127.0.0.1/Films -c ls"; fi
}

services() {
  title "The services' settings are saved first; a service follows when they are applied"
  try fileshare ftp set --anonymous yes --port 2121 --bandwidth 500
  try "grep ^ftp /etc/CGI_ds.conf"
  try fileshare ftp apply
  try "grep -E '^anonymous|^listen_port|rate=' /etc/vsftpd.conf"
  try "grep ftp /etc/services /etc/inetd.conf"
  title "HTTPS: a tunnel to the port of the management pages"
  try fileshare https set --enabled yes
  try fileshare https show
}

media_and_album() {
  title "The share for iTunes: its folder goes into the server's own file"
  try fileshare itunes set --folder /Films --name Films
  try fileshare itunes apply
  try "grep -E '^(mp3_dir|servername)' /etc/mt-daapd.conf"
  title "And as a photo album, with a user of its own who sees one folder"
  try fileshare album set --enabled yes --folder /Films
  try fileshare album apply
  try mkdir /harddisk/volume_1/data/Films/holiday
  try fileshare album user add grandma --text1 "'Grandma Miller'"
  try fileshare album folder add grandma holiday
  try "sed -n '/grandma/,\$p' /etc/album_user.conf"
}

users
life_of_a_user
shares
samba_serves
access_taken_away
services
media_and_album
