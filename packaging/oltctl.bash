# Loaded by bash-completion for oltctl, oltbox, oltreplay and oltsnmp: oltctl prints the completion of all.
eval "$(oltctl completion bash 2>/dev/null)"
