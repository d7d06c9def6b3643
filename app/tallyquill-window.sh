#!/bin/sh
# SPDX-License-Identifier: MIT
#
# Installed as PREFIX/bin/tallyquill-window: opens the window. No link, because GNUstep names the application,
# and with it the user's defaults, after the name it was started by.
here=$(dirname "$(readlink -f "$0")")
exec "$here/../lib/Tallyquill/Tallyquill.app/Tallyquill" "$@"
