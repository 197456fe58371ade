/* Reads an offset by its name, or sets it: client HOST heading     client local com1 118.70 */
#include <stdio.h>
#include <stdlib.h>

#include "tavrix.h"

int main(int count, char **words) {
  tavrix *sim = tavrix_connect(count > 1 ? words[1] : NULL, 10000);
  enum tavrix_offset offset = tavrix_by_name(count > 2 ? words[2] : "heading");
  if (!sim || offset == TAVRIX_OFFSETS) return fprintf(stderr, "%s\n", sim ? "no such name" : tavrix_error(NULL)), 1;
  if (count > 3 && tavrix_set_confirmed(sim, offset, atof(words[3]), 2000)) return fprintf(stderr, "%s\n", tavrix_error(sim)), 1;
  printf("%s %.9g %s\n", tavrix_info_of(offset)->name, tavrix_get(sim, offset), tavrix_info_of(offset)->unit);
  tavrix_close(sim);
  return 0;
}
