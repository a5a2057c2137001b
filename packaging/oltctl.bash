# Loaded by bash-completion for oltctl, oltbox and oltreplay: oltctl prints the completion of all.
eval "$(oltctl completion bash 2>/dev/null)"
