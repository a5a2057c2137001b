# Loaded by bash-completion for oltctl and oltbox: oltctl prints the completion of both.
eval "$(oltctl completion bash 2>/dev/null)"
