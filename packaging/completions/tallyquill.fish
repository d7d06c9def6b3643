# SPDX-License-Identifier: MIT
#
# Completion of tallyquill's options for fish.

complete -c tallyquill -f
complete -c tallyquill -s f -l file -r -F -d 'Evaluate the lines of a file'
complete -c tallyquill -l each -x -d 'Evaluate an entry for each line of standard input'
complete -c tallyquill -s F -l separator -x -d 'What stands between fields'
complete -c tallyquill -s q -l quiet -d 'Print values alone'
complete -c tallyquill -l last -d 'Print the last value only'
complete -c tallyquill -l json -d 'Print a JSON object for each statement'
complete -c tallyquill -l fail-fast -d 'Stop at the first error'
complete -c tallyquill -l preview -d 'Evaluate as while one types'
complete -c tallyquill -l with -x -a '(__fish_append , everyday constants money time temperature)' -d 'Define what ships'
complete -c tallyquill -l no-files -d 'Read none of your own definitions'
complete -c tallyquill -l user -d 'Take your own settings too'
complete -c tallyquill -l deg -d 'Angles in degrees'
complete -c tallyquill -l rad -d 'Angles in radians'
complete -c tallyquill -l figures -x -d 'Significant figures'
complete -c tallyquill -l base -x -a 'bin dec hex' -d 'The base of answers'
complete -c tallyquill -l exponents -x -a 'auto never always eng prefix finance fixed' -d 'When and how answers have exponents'
complete -c tallyquill -l twos-complement -d 'Negative answers in hex and bin as complement'
complete -c tallyquill -l group -d 'Group digits by thousands'
complete -c tallyquill -l mark -x -d 'The mark between groups'
complete -c tallyquill -l comma -d 'Decimal comma'
complete -c tallyquill -l ten-key -d 'Read the sign behind a number'
complete -c tallyquill -l trace -d 'Show the trace of the evaluation'
complete -c tallyquill -l help -d 'Show the help'
complete -c tallyquill -l version -d 'Show the version'
