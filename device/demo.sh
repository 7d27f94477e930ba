#!/bin/busybox sh
# The library at its work, on the reference device's own files: one function a subject.
set -eu

title() { printf '\n== %s\n' "$*"; }

# A command as one would type it, and what it prints.
try() {
  printf '\n$ %s\n' "$*"
  sh -c "$*" || printf '(exit status %s)\n' "$?"
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
  try "echo correcthorse | fileshare user check-password bob"
}

users
