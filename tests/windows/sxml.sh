#!/bin/sh
# sxml.exe under Wine, for tests that run a command. A call is counted when it is the .exe that ran.
echo call >>"$SXML_CALLS"
exec "$SXML_WINE" "$SXML_EXE" "$@"
