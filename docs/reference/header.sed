# What Doxygen reads of the public header: its plain comments as documentation comments.
1s|^/\* |/** @file\n * |
# Behind code, a comment documents what stands before it.
/^ *#/!s|^( *[^ /#].*[^ ]) +/\* |\1 /**< |
# Alone, it documents what follows.
s|^( *)/\* |\1/** |
# Statuses at the start of a line are a list, names of parameters are parameters.
s~^ \*   ([0-9]+(, [0-9]+)*)  *(.)~ *   - \1: \3~
s~^ \* (phHandle|pstParamInit): ~ * @param \1 ~
