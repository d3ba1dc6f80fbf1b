#!/bin/sh
# turkish_locale.sh FOLDER
# Makes tr_TR.UTF-8 available to the tests: nothing to do when the system has
# it, else generated into FOLDER with localedef (no root needed; the tests
# find it through $NYR_TEST_LOCPATH). Never fails: without the locale data the
# tests that need it skip with a message.
folder=$1
if locale -a 2>/dev/null | grep -qi '^tr_TR\.utf-\?8$'; then
  echo "tr_TR.UTF-8: installed"
elif [ -f "$folder/tr_TR.UTF-8/LC_CTYPE" ]; then
  echo "tr_TR.UTF-8: generated before in $folder"
elif mkdir -p "$folder" && localedef -i tr_TR -f UTF-8 "$folder/tr_TR.UTF-8.new" 2>/dev/null; then
  rm -rf "$folder/tr_TR.UTF-8" && mv "$folder/tr_TR.UTF-8.new" "$folder/tr_TR.UTF-8"
  echo "tr_TR.UTF-8: generated in $folder"
else
  echo "tr_TR.UTF-8: not available (install the package locales); tests that need it are skipped"
fi
exit 0
