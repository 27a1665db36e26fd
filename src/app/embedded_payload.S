// The two payload archives, placed in read-only data as they are. KWA_ARCHIVE_A and KWA_ARCHIVE_B are their paths.
// The archives end in the zero word that their format asks for.

#define JOIN_(prefix, name) prefix##name
#define JOIN(prefix, name) JOIN_(prefix, name)
#define SYMBOL(name) JOIN(__USER_LABEL_PREFIX__, name)

    .section .rdata, "dr"

    .balign 4
    .globl SYMBOL(embeddedArchiveA)
SYMBOL(embeddedArchiveA):
    .incbin KWA_ARCHIVE_A

    .balign 4
    .globl SYMBOL(embeddedArchiveB)
SYMBOL(embeddedArchiveB):
    .incbin KWA_ARCHIVE_B
