# Sourced: readme_host FILE README writes the host of README, five lines, as a whole program.
readme_host() {
    {
        echo '#include <string.h>'
        awk '/^```c$/ { inside = 1; next } /^```$/ { if (inside) exit }
             inside && /^#include/ { print; print "int main(void) {"; next } inside' "$2"
        echo '    return link == NULL;'
        echo '}'
    } > "$1"
    [ "$(wc -l < "$1")" -ge 8 ]
}
