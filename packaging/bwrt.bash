# bash completion for bwrt

_bwrt() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command= inner= i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            -*) ;;
            *)
                if [ -z "$command" ]; then
                    command=${COMP_WORDS[i]}
                else
                    inner=${COMP_WORDS[i]}
                    break
                fi
                ;;
        esac
    done
    local common="--help --quiet --verbose --no-aliases"
    local out="-o --output --in-place --accept-losses"
    local meshes="--skin --shadow"
    local flags="wireframe grid textures lighting backfaces isolines normals cull-vertices anti-aliasing filtering"
    local options= words=
    case $command in
        "") words="check report diff mirror auto-assign normals swap reassign unassign weights alias new convert
            picture"
            options="--help --version" ;;
        check) options="--only --ignore --strict --no-hints --json --vertex-threshold --bone-threshold" ;;
        report) options="--only --json" ;;
        diff) options="--json" ;;
        mirror) options="$out $meshes --on-shadow --right-to-left --only-unassigned --unassign --vertex-threshold
            --bone-threshold --prove --json" ;;
        auto-assign) options="$out $meshes --mesh --by" ;;
        normals) options="$out $meshes --mesh" ;;
        swap) options="$out $meshes --on-shadow --bone --with" ;;
        reassign) options="$out $meshes --on-shadow --from --to" ;;
        unassign) options="$out $meshes --on-shadow --bone --all" ;;
        weights)
            case $inner in
                save) options="--on-shadow" ;;
                load) options="$out $meshes --on-shadow --by --accept" ;;
                *) words="save load" ;;
            esac ;;
        alias)
            case $inner in
                make) options="-o --output --mesh --replace" ;;
                *) words="make" ;;
            esac ;;
        new) options="-o --output --skin" ;;
        convert) options="--like --in-place --force --skin" ;;
        picture) options="--size --camera --fit --tab --mode --bone --on-shadow --point-size --show --hide" ;;
    esac
    case $before in
        --by)
            if [ "$command" = weights ]; then words="index position"; else words="joints segments"; fi
            options= common= ;;
        --accept) words="version bones name vertices" options= common= ;;
        --camera) words="perspective orthographic front back left right top bottom" options= common= ;;
        --tab) words="viewing editing" options= common= ;;
        --mode) words="normal shaded both" options= common= ;;
        --show | --hide) words=$flags options= common= ;;
        --only | --ignore)
            options= common=
            if [ "$command" = report ]; then
                words="meshes materials instances bones mesh-names material-names instance-names bone-names
                    texture-filenames"
            else
                words=$(bwrt check --help 2>/dev/null | sed -n '/^Codes:/,$s/^  \([a-z-]*\) .*/\1/p')
            fi ;;
    esac
    if [ "$command" = convert ] && [ "${word#-}" = "$word" ] && [ "$before" != --skin ]; then
        local endings="mvm glb gltf fbx dae obj x"
        [ "$before" = --like ] && endings=mvm
        compopt -o filenames -o default
        mapfile -t COMPREPLY < <(compgen -d -- "$word"
            for i in $endings; do compgen -f -X "!*.$i" -- "$word"; done)
        return
    fi
    case $word in
        -*) words="$options $common" ;;
    esac
    COMPREPLY=($(compgen -W "$words" -- "$word"))
    [ -n "${COMPREPLY[*]}" ] || compopt -o default
}
complete -F _bwrt bwrt
