#!/bin/sh
# The older name of the media server's script.
exec /etc/rc.d/mediaserver.sh "$@"
