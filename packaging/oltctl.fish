# Loaded by fish for oltctl, oltbox and oltreplay: oltctl prints the completion of all.
oltctl completion fish 2>/dev/null | source
