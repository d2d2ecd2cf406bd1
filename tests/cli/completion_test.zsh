# completion_test.zsh BUILD: completion, as a zsh and a bash at a terminal do it. Exit status 77: there
# are no pseudo-terminals here.
zmodload zsh/zpty
zpty probe true 2>/dev/null || exit 77
setopt err_exit pipe_fail
build=$1:A
path=($build $path)
work=$(mktemp -d)
trap 'rm -rf $work' EXIT
mkdir -p $work/home $work/here/folder
cd $work/here
print -l '[Log]' level=1 Lines=2 '[Volume a b]' size=1 '[Volume $(touch harm)]' x=1 >f.conf
mkfifo pipe
print -l '[Other]' y=1 '[a:b=c]' y=1 >../home/f.conf

# Shells in which control-O inserts all that may stand for the last word, and shows the
# line. With all of them bash takes quotes away; control-Y inserts a single one.
cat >$work/home/.zshrc <<END
fpath=($build/completions \$fpath)
autoload -Uz compinit && compinit -u -d ~/dump
insert_all() { compstate[insert]=all compstate[list]= }
show() { comppostfuncs=(insert_all); zle complete-word; zle -I; print -r -- "<<<\${BUFFER%% }>>>"; BUFFER= }
zle -N show && bindkey '^O' show
END
cat >$work/home/.bashrc <<END
. $build/completions/quarry-config.bash
show() { printf '<<<%s>>>' "\${READLINE_LINE% }"; READLINE_LINE=; }
bind -x '"\C-t": show' && bind '"\C-o": "\e*\C-t"' && bind '"\C-y": "\t\C-t"'
END
export HOME=$work/home ZDOTDIR=$work/home TERM=dumb INPUTRC=/dev/null
zpty zsh zsh -d -i
zpty bash bash -i
complete_line() { # SHELL LINE: sets `reply` to what it becomes
  local out key=$'\C-o'
  [[ $1 != bash || $2 != *[\"\']* ]] || key=$'\C-y'
  zpty -w -n $1 "quarry-config $2$key"
  zpty -r $1 out '*<<<*>>>*'
  reply=${${out##*<<<quarry-config }%%>>>*}
}
expect() { # SHELL LINE WANTED
  complete_line $1 $2
  [[ $reply == $3 ]] || { print -r "completion of \"$2\" in $1: \"$reply\""; exit 1 }
}

cases=( # the line, what it becomes
  'set f.conf --'                       'set f.conf --as --create --dry-run --exit-code --from --help --report --show-secrets'
  'set f'                               'set f.conf folder/'
  'seal '                               'seal folder/'
  'check --as '                         'check --as agent client'
  'check --strict --allow un'           'check --strict --allow unknown-section unknown-setting'
  'check --format=s'                    'check --format=sarif'
  'get --default z -- f.conf l'         'get --default z -- f.conf Log'
  'get --default = f.conf l'            'get --default = f.conf Log'
  'list ~/f.conf '                      'list ~/f.conf Other a:b=c'
  'seal --into f'                       'seal --into f.conf folder/'
  'rename f.conf log l'                 'rename f.conf log Lines level'
  'list --origin f.conf f.conf f'        'list --origin f.conf f.conf f.conf folder/'
  'get f.conf LOG l'                    'get f.conf LOG Lines level'
  'unset f.conf Volume\ a\ b '          'unset f.conf Volume\ a\ b size'
  'get ~/f.conf a:b=c '                 'get ~/f.conf a:b=c y'
  'get ~/f.conf a:b='                   'get ~/f.conf a:b=c'
  'get f.conf "volume a'                'get f.conf "Volume a b"'
  'get f.conf "volume \$'               'get f.conf "Volume \$(touch harm)"'
  "get f.conf 'volume a"                "get f.conf 'Volume a b'"
  "unset f.conf 'Volume \$(touch harm)' " "unset f.conf 'Volume \$(touch harm)' x"
  "get f.conf '' "                      "get f.conf ''"
  'get pipe L'                          'get pipe L'
  'unset pipe Log l'                    'unset pipe Log l'
  'get $(touch harm) l'                 'get $(touch harm) l'
  'get "`touch harm`" l'                'get "`touch harm`" l'
)
for line wanted in "$cases[@]"; do
  expect zsh $line $wanted
  expect bash $line ${wanted%/}
done
[[ ! -e harm ]] || { print 'completion runs what was typed'; exit 1 }
