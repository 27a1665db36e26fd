// Places the two payload archives in read-only data, byte for byte. KWA_ARCHIVE_A and KWA_ARCHIVE_B are their paths.
// Each archive file already ends with the zero word that the format requires.

#define JOIN_(prefix, name) prefix##name
#define JOIN(prefix, name) JOIN_(prefix, name)
#define SYMBOL(name) JOIN(__USER_LABEL_PREFIX__, name)

    .section .payload, "dr"

    .balign 4
    .globl SYMBOL(embeddedArchiveA)
SYMBOL(embeddedArchiveA):
    .incbin KWA_ARCHIVE_A

    .balign 4
    .globl SYMBOL(embeddedArchiveB)
SYMBOL(embeddedArchiveB):
    .incbin KWA_ARCHIVE_B
