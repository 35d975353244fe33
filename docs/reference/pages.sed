# What Doxygen reads of the pages: links to files of the repository that are no pages of the
# reference become plain text.
s~\[([^]]*)\]\((\.\./)*include/lumora/filters\.h\)~\1 (@ref filters.h)~g
s~\[([^]]*)\]\((\.\./)*(bench/[^)]*|examples[^)]*|LICENSE|[^)]*\.in\.md)\)~\1~g
