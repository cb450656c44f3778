# To be sourced: runs vrx2260 with the sample site and separate folders for data and settings, so that
# the real user's files do not change. Needs `bin`, the program's directory.

data_folder() { echo "$1/data/Brantock/VRX-2260"; }

# port_link HOME N: the link for serial port N.
port_link() { echo "$(data_folder "$1")/Ports/COM$2"; }

# write_ini HOME YES|NO: whether to open the databases of the last run at the start. The program
# completes the file.
write_ini() {
  cat >"$(data_folder "$1")/VRX-2260.INI" <<END
[Comments]
Title=VRX-2260 Initialization File
[Communications]
SerialPort=2
[Options]
AutoloadRecipeDB=$2
AutoloadTransDB=$2
END
}

# quiet_ctl HOME WORD...: runs vrx2260ctl and shows its output only if it fails.
quiet_ctl() {
  local home=$1 said
  shift
  said=$("$bin/vrx2260ctl" --data-dir "$(data_folder "$home")" "$@" 2>&1) || {
    echo "$said" >&2
    return 1
  }
}

# make_sample_desktop HOME: creates the recipes and the month without its last day as the databases of
# the last run. Deletes the previous contents of HOME.
make_sample_desktop() {
  local home=$1 data
  data=$(data_folder "$home")
  rm -rf "$home"
  mkdir -p "$data/Ports" "$home/config/Brantock"
  write_ini "$home" YES
  cp "$bin/sample_site/SITE.RDB" "$data/SITE.RDB"
  cp "$bin/sample_site/SITE.TDB" "$data/JANUARY.TDB"
  quiet_ctl "$home" --yes store --undo --into "$data/JANUARY.TDB"
  cat >"$home/config/Brantock/VRX(2260).conf" <<END
[Settings]
MRU_RecipePathName="$data/SITE.RDB"
MRU_RecipeFileName=SITE.RDB
MRU_TransPathName="$data/JANUARY.TDB"
MRU_TransFileName=JANUARY.TDB
END
}

# on_sample_desktop HOME COMMAND...: executes the command in place of the shell, so call it in a
# subshell. Keeps the theme of the real user's desktop.
on_sample_desktop() {
  local home=$1
  shift
  exec env XDG_CONFIG_DIRS="${XDG_CONFIG_HOME:-$HOME/.config}:${XDG_CONFIG_DIRS:-/etc/xdg}" \
    XDG_DATA_DIRS="${XDG_DATA_HOME:-$HOME/.local/share}:${XDG_DATA_DIRS:-/usr/local/share:/usr/share}" \
    XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" "$@"
}
