# Reduces g++'s -fdump-lang-class to what other binaries rely on: virtual slots, size and bases of
# the classes that are wanted. Reads their list first, a line `class NAME` each, then the dump.
FNR == NR { if ($1 == "class") wanted[$2] = 1; next }

/^Vtable for / || /^Class / { section = $1; class = $NF; known = class in wanted }
!known { next }

# A table of slots: lines of a byte offset and an entry. Slots are counted from the entry behind
# the type information; plain numbers are offsets, or the destructors of an abstract class.
/^Vtable for / {
    print (tables++ ? "\n" : "") "class " class
    kind = "slots"
}
section == "Vtable" && /\(& _ZTI/ {
    start = $1 + 8
    print "    " kind
    kind = "slots of the virtual base"
    next
}
section == "Vtable" && sub(/^[0-9]+ +(\(int \(\*\)\(\.\.\.\)\))?/, "& ") && $NF ~ /^[A-Za-z_]/ {
    printf "        %2d %s\n", ($1 - start) / 8, $NF
}

# Size and bases, which follow the slots.
section == "Class" && /^   size=/ { split($1, size, "="); print "    " size[2] " bytes" }
section == "Class" && /^[A-Za-z_].* \(0x/ && $1 != class {
    print "    base " $1 " at " $3 ($4 == "virtual" ? ", virtual" : "")
}
