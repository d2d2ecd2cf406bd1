// The smallest library that can take the platform library's place, but for the class
// Cr_ErrnoException: its settings have names of one letter, its stored passwords are
// plain text behind "host:".

#include <string.h>

const char _dct_config_section_string_table_[] = {
    [0] = 'a', [144] = 'm', [165] = 's', [206] = 'l', [252] = 'c', [323] = 'x', [324] = '\0'};
const char _dct_config_entry_string_table_[] = {
    [392] = 'n', [617] = 'p', [695] = 'o', [1322] = 'u', [1503] = 'k', [2777] = 'a', [2778] = '\0'};

const char* CRStatusToStringA(int status) { return status == 0 ? "done" : "failed"; }

int DecryptPasswdWithKey(const char* key_file, const char* stored, char* out, size_t capacity) {
  if (key_file == NULL || strncmp(stored, "host:", 5) != 0 || strlen(stored + 5) >= capacity) return 77;
  strcpy(out, stored + 5);
  return 0;
}
