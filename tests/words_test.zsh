# words_test.zsh ROOT BUILD: the completion of zsh knows every command and option that
# --help shows, and no other; completion, as a zsh at a terminal makes it. Exit status
# 77: there are no pseudo-terminals here.
zmodload zsh/zpty
zpty probe true 2>/dev/null || exit 77
setopt err_exit pipe_fail
root=$1:A
path=($2:A $path)
work=$(mktemp -d)
trap 'rm -rf $work' EXIT
mkdir -p $work/home $work/here/folder
cd $work/here
print -l '[Log]' level=1 Lines=2 '[Volume a b]' size=1 '[Volume $(touch harm)]' x=1 >f.conf
print -l '[Other]' y=1 >../home/f.conf

# At control-O it inserts all that may stand for the last word, and shows the line.
cat >$work/home/.zshrc <<END
fpath=($root/completions \$fpath)
autoload -Uz compinit && compinit -u -d ~/dump
insert_all() { compstate[insert]=all compstate[list]= }
show() { comppostfuncs=(insert_all); zle complete-word; zle -I; print -r -- "<<<\${BUFFER%% }>>>"; BUFFER= }
zle -N show && bindkey '^O' show
END
zpty shell "HOME=$work/home ZDOTDIR=$work/home TERM=dumb zsh -d -i"
complete_line() { # LINE: sets `reply` to what it becomes
  local out
  zpty -w -n shell "quarry-config $1"$'\C-o'
  zpty -r shell out '*<<<*>>>*'
  reply=${${out##*<<<quarry-config }%%>>>*}
}
expect() { # LINE WANTED
  complete_line $1
  [[ $reply == $2 ]] || { print -r "words: completion of \"$1\": \"$reply\""; exit 1 }
}

known=(${(f)"$(quarry-config --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p' | sort)"})
[[ $#known -ge 12 ]]
expect '' "--help --version $known"
for command in $known; do
  complete_line "$command -"
  found=(${(o)${=reply#* }:#--help})
  wanted=(${(of)"$(quarry-config $command --help | sed -n '/^Options:/,/^$/s/^ *\(-[a-zA-Z-]*\).*/\1/p' | sed '/^-h$/d')"})
  [[ $found == $wanted ]] || { print -r "words: completion has other options of $command: $found"; exit 1 }
done

cases=(
  'set f'                               'set f.conf folder/'
  'seal '                               'seal folder/'
  'check --as '                         'check --as agent client'
  'check --format s'                    'check --format sarif'
  'set f.conf '                         'set f.conf Log Volume\ \$\(touch\ harm\) Volume\ a\ b'
  'get --default z -- f.conf l'         'get --default z -- f.conf Log'
  'list ~/f.conf '                      'list ~/f.conf Other'
  'get f.conf LOG l'                    'get f.conf LOG Lines level'
  'unset f.conf Volume\ a\ b '          'unset f.conf Volume\ a\ b size'
  "unset f.conf 'Volume \$(touch harm)' " "unset f.conf 'Volume \$(touch harm)' x"
  "get f.conf '' "                      "get f.conf ''"
  'get absent '                         'get absent'
  'get $(touch harm) l'                 'get $(touch harm) l'
  'get "`touch harm`" l'                'get "`touch harm`" l'
)
for line wanted in "$cases[@]"; do expect $line $wanted; done
[[ ! -e harm ]] || { print 'words: completion runs what was typed'; exit 1 }
