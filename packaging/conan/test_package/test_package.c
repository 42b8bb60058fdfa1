#include <qzsvggen/qzsvggen.h>
#include <stdio.h>

int main(void) {
  const int32_t page[] = {0, 0, 100, 100};
  SvgGenerator* generator = SVG_Create((const RECT*)page);
  const int32_t size = SVG_Close(generator, NULL, 0);
  SVG_Delete(generator);
  printf("interface %d, a document of %d code units\n", (int)SVG_GetVersion(), (int)size);
  return size > 0 ? 0 : 1;
}
