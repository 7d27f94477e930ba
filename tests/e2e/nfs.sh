# exportfs takes the exports that the library wrote for what they mean. The device's kernel has no
# NFS server that could export them: that each line is understood, and what exportfs lists then, is
# what is looked at, not a mount.
. /usr/local/bin/e2e/common.sh
needs /sbin/exportfs

# One line a share: the folder, then the hosts and what they may do, each option of ours once.
lists() {
  exportfs -s >/tmp/listed
  sed -e 's/ *\*(/ /' -e 's/)$//' /tmp/listed | while read -r folder options; do
    printf '%s' "$folder"
    for option in rw ro async all_squash anonuid=501 anongid=501; do
      case ",$options," in *",$option,"*) printf ' %s' "$option" ;; esac
    done
    echo
  done >/tmp/exported
  holds /tmp/exported "$1"
}

# Every line is understood; it only misses an option whose default has changed.
understands() {
  succeeds exportfs -r
  if grep -v -e '^$' -e subtree_check -e 'this default has changed' /tmp/told; then
    fail "exportfs complains"
  fi
}

ours='async all_squash anonuid=501 anongid=501
'
data=/harddisk/volume_1/data

step "What everyone may use is exported, to write or to read"
succeeds fileshare share add Films /films/old
succeeds fileshare share grant everyone Films --read-only
succeeds fileshare share add Plans /plans
succeeds fileshare share grant staff Plans
succeeds fileshare nfs apply
understands
lists "$data/public rw $ours$data/Music ro $ours$data/films/old ro $ours"

step "Access that changes, and a share that goes, are followed"
succeeds fileshare share revoke everyone Music
succeeds fileshare share grant everyone Plans
succeeds fileshare share delete Films
succeeds fileshare nfs apply
understands
lists "$data/public rw $ours$data/plans rw $ours"

step "Off, nothing is exported; on, the daemons come first, then the exports"
succeeds fileshare nfs set off
lists ''
: >/var/log/commands
succeeds fileshare nfs set on
wait_until lists "$data/public rw $ours$data/plans rw $ours"
holds /var/log/commands 'sleep 1
/sbin/portmap
/sbin/nfsd
/sbin/mountd
'

step "A blank ends a folder's name: the folder up to it is exported"
mkdir $data/old
succeeds fileshare share add Songs '/old songs'
succeeds fileshare share grant everyone Songs
succeeds fileshare nfs apply
exportfs -r >/tmp/told 2>&1 || :
succeeds grep -x "$data/old.*" /var/lib/nfs/etab
