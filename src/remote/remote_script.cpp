#include "remote/remote_script.h"

#include "actions/command_validators.h"

namespace tallowcrest {

std::string_view macSampleScript() {
    return R"script(cpu=$(ps -axo pcpu= | awk '{s+=$1} END {printf "%.0f", s}')
cores=$(sysctl -n hw.ncpu 2>/dev/null || echo 1)
mem=$(memory_pressure -Q 2>/dev/null | awk -F': ' '/free percentage/ {gsub("%","",$2); printf "%.0f", 100-$2}')
os=$(sw_vers -productVersion 2>/dev/null || echo unknown)
topcpu=$(ps -axo pcpu=,comm= | sort -nr | head -1 | awk '{$1=sprintf("%.1f%%",$1); print}')
topmem=$(ps -axo rss=,comm= | sort -nr | head -1 | awk '{$1=sprintf("%.0fMB",$1/1024); print}')
printf "cpu=%s\nmem=%s\ncores=%s\nos=%s\ntopcpu=%s\ntopmem=%s\n" "$cpu" "$mem" "$cores" "$os" "$topcpu" "$topmem"
ps -axo pid=,pcpu=,rss=,comm= | sort -k2 -nr | head -5 | awk '{pid=$1; cpu=$2; rss=sprintf("%.0f",$3/1024); $1=""; $2=""; $3=""; sub(/^ +/,""); printf "proc=%s|%s|%s|%s\n", pid, cpu, rss, $0}')script";
}

std::string_view linuxSampleScript() {
    // Measured from the counters of /proc: the percentages of ps are averages over the life of each
    // process. The first column of the rows is what they are sorted by, and the name is the last
    // one, because it may contain anything.
    return R"script(LC_ALL=C
export LC_ALL
cores=$(awk '/^cpu[0-9]/ {count++} END {print count + 0 ? count : 1}' /proc/stat 2>/dev/null)
page=$(getconf PAGESIZE 2>/dev/null || awk '/^KernelPageSize:/ {print $2 * 1024; exit}' /proc/self/smaps 2>/dev/null)
mem=$(awk '$1 == "MemTotal:" {all = $2} $1 == "MemAvailable:" {available = $2}
    END {if (all > 0 && available != "") printf "%.0f", 100 - 100 * available / all}' /proc/meminfo 2>/dev/null)
os=$(cat /etc/os-release /usr/lib/os-release 2>/dev/null | sed -n 's/^PRETTY_NAME=//p' | head -n 1 | tr -d '"')
printf "mem=%s\ncores=%s\nos=%s\n" "$mem" "$cores" "${os:-unknown}"
own=$(sed -n 's/.*[)] //p' /proc/$$/stat 2>/dev/null | cut -d ' ' -f 4)
counters() { cat /proc/stat /proc/[0-9]*/stat 2>/dev/null; }
{ counters; sleep 1; echo again; counters; } | awk -v cores="$cores" -v page="${page:-4096}" -v own="$own" '
    # A name may contain a line break: the lines up to the next whole one are no rows.
    /^[0-9]+ [(]/ && NF < 20 {broken = 1}
    broken {if (NF >= 20) broken = 0; next}
    $1 == "again" {second = 1}
    $1 == "cpu" {
        idle = $5 + $6 - idle
        all = $2 + $3 + $4 + $5 + $6 + $7 + $8 + $9 - all
        if (second && all > 0) printf "cpu=%.0f\n", 100 * cores * (all - idle) / all
    }
    /^[0-9]+ [(]/ {
        name = $0
        sub(/^[0-9]+ [(]/, "", name)
        sub(/[)] [^)]*$/, "", name)
        gsub(/[^ -~]/, "?", name)
        rest = $0
        sub(/.*[)] /, "", rest)
        split(rest, field, " ")
        # The session of this script.
        if (own > 0 && field[4] == own) next
        if (int(field[7] / 2097152) % 2) name = "[" name "]"
        used = field[12] + field[13]
        if (!second) {before[$1] = used; next}
        used -= before[$1]
        printf "%.1f|%d|%.0f|%s\n", (all > 0 && used > 0 ? 100 * cores * used / all : 0), $1, field[22] * page / 1048576, name
    }' | sort -t "|" -k1,1nr | awk -F "|" '
    /^cpu=/ {print; next}
    {
        rest = $0
        sub(/^[^|]*[|][^|]*[|][^|]*[|]/, "", rest)
        if (count++ == 0) printf "topcpu=%s%% %s\n", $1, rest
        if (count <= 5) printf "proc=%s|%s|%s|%s\n", $2, $1, $3, rest
        if (top == "" || $3 + 0 > most) {most = $3 + 0; top = rest}
    }
    END {if (count > 0) printf "topmem=%.0fMB %s\n", most, top}')script";
}

std::string linuxSampleCommand() {
    return "sh -c " + CommandSafetyPolicy::shellQuoted(linuxSampleScript());
}

}  // namespace tallowcrest
