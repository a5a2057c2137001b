# Loaded by bash-completion: the program prints its completion from its own catalog.
eval "$(oltctl completion bash 2>/dev/null)"
