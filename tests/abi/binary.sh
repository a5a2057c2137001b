# shellcheck shell=sh disable=SC2154,SC2034 # the scripts set file, and use what is read here
# Reads a program or library and checks what holds for all of them. Sourced by scripts that set
# $file; READELF names the tool to read it with.

readelf=${READELF:-readelf}
header=$("$readelf" -hW "$file")
dynamic=$("$readelf" -dW "$file")
segments=$("$readelf" -lW "$file")
symbols=$("$readelf" -W --dyn-syms "$file")

complaints=0
complain() {
  echo "$(basename "$file"): $*"
  complaints=$((complaints + 1))
}

echo "$dynamic" | grep -Eq '\(FLAGS\).*BIND_NOW|\(BIND_NOW\)' || complain "is bound lazily (no BIND_NOW)"
! echo "$dynamic" | grep -q TEXTREL || complain "has relocations in its code (TEXTREL)"

# The linker for MIPS does not support RELRO.
if ! echo "$header" | grep -q 'Machine:.*MIPS'; then
  echo "$segments" | grep -q GNU_RELRO || complain "is writable after relocation (no RELRO)"
fi

stack=$(echo "$segments" | awk '$1 == "GNU_STACK" { print $7 $8 }')
case $stack in
  "" | *E*) complain "requires an executable stack" ;;
esac
