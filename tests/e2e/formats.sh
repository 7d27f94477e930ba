# The daemons that Debian does not package read what the library writes for them: what stands in
# their places checks each line, and a line that is not of the format is refused.
. /usr/local/bin/e2e/common.sh
log=/var/log/formats

was_read_by() { grep -q "^$1: " $log; }

# accepts DAEMON... -- COMMAND...: the daemons are started, in the background too, and accept.
accepts() {
  daemons=
  while [ "$1" != -- ]; do
    daemons="$daemons $1"
    shift
  done
  shift
  : >$log
  succeeds "$@"
  for daemon in $daemons; do
    wait_until was_read_by "$daemon"
  done
  if grep -v ': accepted$' $log; then fail "refused after: $*"; fi
}

# breaks FILE SED-COMMAND DAEMON...: the daemon refuses the file with that change.
breaks() {
  file=$1 change=$2
  shift 2
  cp "$file" /tmp/whole
  sed -i "$change" "$file"
  if cmp -s /tmp/whole "$file"; then fail "$change changes nothing in $file"; fi
  refused "$file: " "$@"
  cp /tmp/whole "$file"
  succeeds "$@"
}

step "AFP and what the network is told: with the factory's settings, with all that can be set, off"
accepts afpd mDNSResponder -- fileshare afp apply
succeeds fileshare share add Backups /backups --comment 'Of "all" Macs'
succeeds fileshare share grant staff Backups
succeeds fileshare share revoke everyone Music
stick=/harddisk/volume_4/data/HDD_1
for partition in 1 2; do
  mkdir -p ${stick}_$partition
  mount -t tmpfs stick ${stick}_$partition
done
mount -o remount,ro ${stick}_2
succeeds fileshare share removable-add HDD 1
succeeds fileshare afp set --guests yes --name Attic --code-page '' --time-machine Backups
accepts afpd mDNSResponder -- fileshare afp apply
[ "$(grep -c . /etc/howl/mDNSResponder.conf)" = 4 ] || fail "backups are not told of"
breaks /etc/netatalk/afpd.conf 's/uams_guest.so,//' /usr/sbin/afpd
breaks /etc/netatalk/afpd.conf 's/$/\n/' /usr/sbin/afpd
breaks /etc/netatalk/AppleVolumes.conf 's/\]"  rwlist/]" rwlist/' /usr/sbin/afpd
breaks /etc/netatalk/AppleVolumes.conf 's/,@"everyone"$/&,/' /usr/sbin/afpd
breaks /etc/howl/mDNSResponder.conf 's/_adisk._tcp /_adisk._tcp\t/' /sbin/mDNSResponder
breaks /etc/howl/mDNSResponder.conf '/_http/d' /sbin/mDNSResponder
breaks /etc/howl/mDNSResponder.conf 's/.*AFP.*/&\n&/' /sbin/mDNSResponder
succeeds fileshare afp set --enabled no
accepts mDNSResponder -- fileshare afp apply
[ "$(grep -c . /etc/howl/mDNSResponder.conf)" = 1 ] || fail "AFP is told of though it is off"

step "iTunes: the music of a folder"
mkdir -p '/harddisk/volume_1/data/Music/Old songs'
succeeds fileshare itunes set --enabled yes --folder '/Music/Old songs' --name "Ann's music"
accepts mt-daapd -- fileshare itunes apply
breaks /etc/mt-daapd.conf 's/^port\t\t/port /' /usr/sbin/mt-daapd
breaks /etc/mt-daapd.conf '/^mp3_dir/d' /usr/sbin/mt-daapd

step "The broadcast: inetd starts its server for the first listener"
succeeds fileshare broadcast set --enabled yes --folder /Music --port 4321 --in-order no
succeeds fileshare broadcast apply
wait_until answers 4321
accepts ample -- answers 4321
breaks /etc/ample.conf 's/^order=.*/order=random/' /usr/sbin/ample

step "UPnP: two folders, with and without a look through them by itself"
succeeds fileshare upnp set --enabled yes --slot 1 --folder /Music --content 1
succeeds fileshare upnp set --slot 2 --folder '/DISK 1' --content 3 --name Pictures --rescan yes
accepts mediaserver -- fileshare upnp apply
breaks /etc/media.conf 's/+V/+X/' /usr/sbin/mediaserver /etc/media.conf
breaks /etc/media.conf 's/^scan_interval=.*/scan_interval=/' /usr/sbin/mediaserver /etc/media.conf
succeeds fileshare upnp set --rescan no
accepts mediaserver -- fileshare upnp apply --keep-database
