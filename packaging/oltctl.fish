# Loaded by fish for oltctl, oltbox, oltreplay and oltsnmp: oltctl prints the completion of all.
oltctl completion fish 2>/dev/null | source
