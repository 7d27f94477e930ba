# stunnel takes browsers to the pages over TLS, as long as that is wanted.
. /usr/local/bin/e2e/common.sh
needs /usr/sbin/stunnel /usr/bin/curl /usr/bin/openssl

# Only a server that has the certificate's key gets the page.
page() {
  curl -sS -m 30 --cacert /tmp/certificate --resolve DiskServer:443:127.0.0.1 https://DiskServer/ |
    grep -xF "$1"
}

serve_pages() {
  mkdir -p "/home/$1"
  echo "the pages at port $1" >"/home/$1/index.html"
  busybox httpd -p "127.0.0.1:$1" -h "/home/$1"
}

is_closed() { ! answers 443; }
is_gone() { ! pidof stunnel; }

apply() { succeeds fileshare https apply; }

step "HTTPS is on: the page answers over TLS"
make_certificate "$(sed -n 's/^cert = //p' /etc/stunnel.conf)"
serve_pages 80
serve_pages 8080
succeeds is_closed
succeeds fileshare https set --enabled yes
apply
wait_until page "the pages at port 80"

step "HTTPS is off: nothing answers"
succeeds fileshare https set --enabled no
apply
wait_until is_closed
wait_until is_gone
succeeds curl -sS -m 30 http://127.0.0.1/

step "The pages move to another port, and HTTPS with them"
sed -i 's/^port=80$/port=8080/' /etc/CGI_ds.conf
succeeds fileshare https set --enabled yes
apply
wait_until page "the pages at port 8080"
