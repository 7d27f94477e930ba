#!/bin/sh
# Starts or stops the media server.
case "$1" in
  start) exec /usr/sbin/mediaserver /etc/media.conf ;;
  stop) exec /bin/killall mediaserver ;;
esac
