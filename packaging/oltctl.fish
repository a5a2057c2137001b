# Loaded by fish for oltctl and oltbox: oltctl prints the completion of both.
oltctl completion fish 2>/dev/null | source
