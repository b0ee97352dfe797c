/*
 * Reads an object dictionary back out of the compiled tables, the way a stack does: it bisects a line's part of the
 * assignments, searches the subindex among the object's descriptions, and follows the positions into the arrays.
 */

#include "stack.h"

#include <stdio.h>

/* The variables of the application and their names; the last one has no name. */
typedef struct
{
    const char *name;
    const void *pVar;
} VARIABLE_T;
extern const VARIABLE_T walkerVariables[];

/* ---- The search of a stack --------------------------------------------------------------------------------------- */

static const CO_OD_ASSIGN_T *findObject(const STACK_DICTIONARY_T *pDictionary, UNSIGNED16 index)
{
    unsigned low = 0;
    unsigned high = pDictionary->assignCnt;

    while (low < high) {
        unsigned middle = (low + high) / 2;

        if (pDictionary->pAssign[middle].index < index)
            low = middle + 1;
        else
            high = middle;
    }
    return low < pDictionary->assignCnt && pDictionary->pAssign[low].index == index ? &pDictionary->pAssign[low] : NULL;
}

/* A compact row stands for all subindices behind it, up to the object's last. */
static const CO_OBJECT_DESC_T *findSub(const STACK_DICTIONARY_T *pDictionary, const CO_OD_ASSIGN_T *pObject,
                                       unsigned subIndex)
{
    unsigned i;

    for (i = 0; i < pObject->numberOfDesc; ++i) {
        const CO_OBJECT_DESC_T *pDesc = &pDictionary->pDesc[pObject->firstDesc + i];

        /* The line knows no row beyond its count. */
        if (pObject->firstDesc + i >= pDictionary->descCnt)
            return NULL;
        if (pDesc->subIndex == subIndex)
            return pDesc;
        if ((pDesc->attributes & CO_ATTR_COMPACT) != 0 && pDesc->subIndex < subIndex && subIndex <= pObject->highestSub)
            return pDesc;
    }
    return NULL;
}

/* ---- Values ------------------------------------------------------------------------------------------------------ */

static int typeOf(const CO_OBJECT_DESC_T *pDesc)
{
#ifdef STACK_V4
    return (int)pDesc->type;
#else
    return (int)pDesc->type / 32;
#endif
}

static int specifierOf(const CO_OBJECT_DESC_T *pDesc)
{
#ifdef STACK_V4
    return (int)pDesc->specifier;
#else
    return (int)pDesc->type % 32;
#endif
}

static const char *typeName(int type)
{
    switch (type) {
#define X(name)                                                                                                        \
    case STACK_TYPE_##name:                                                                                            \
        return #name;
        STACK_TYPES(X)
#undef X
    case STACK_TYPE_DOMAIN:
        return "DOMAIN";
    case STACK_TYPE_STRING_NULL:
        return "VS";
    case STACK_TYPE_OCTET_STRING:
        return "OS";
    default:
        return "?";
    }
}

static const char *specifierName(int specifier)
{
    switch (specifier) {
#define X(name)                                                                                                        \
    case CO_DSPEC_##name:                                                                                              \
        return #name;
        STACK_SPECIFIERS(X)
#undef X
    default:
        return "-";
    }
}

static const char *objectTypeName(int type)
{
    static const char *const names[] = {"DOMAIN", "VAR", "ARRAY", "RECORD"};

    return type <= CO_ODTYPE_STRUCT ? names[type] : "?";
}

#ifdef CO_EXTENDED_DATA_TYPES
static void printBytes(const UNSIGNED8 *pBytes, unsigned count)
{
    unsigned long long value = 0;
    unsigned i;

    for (i = 0; i < count; ++i)
        value = value << 8 | pBytes[i];
    printf("%llu", value);
}
#endif

/* The types that are kept in arrays: the type, its arrays, and how its values are printed. */
/* clang-format off */
#define NUMBERS(X)                                                                                                     \
    X(BOOL, u8, "%u", unsigned) X(U8, u8, "%u", unsigned) X(U16, u16, "%u", unsigned)                                  \
    X(U32, u32, "%lu", unsigned long) X(I8, i8, "%d", int) X(I16, i16, "%d", int) X(I32, i32, "%ld", long)             \
    X(R32, r32, "%.6g", double)
#ifdef CO_EXTENDED_DATA_TYPES
#define BYTES(X) X(U24, u24) X(U40, u40) X(U48, u48) X(U64, u64)
#else
#define BYTES(X)
#endif
/* clang-format on */

/* A missing array is a fault of the tables: some row has a position in it. */
#define IF_PRESENT(pArray, print)                                                                                      \
    if ((pArray) == NULL)                                                                                              \
        printf("missing");                                                                                             \
    else                                                                                                               \
        print;                                                                                                         \
    break
#define ARRAY_OF(name) (constant ? p->od_const_##name : p->od_##name)
#define NUMBER_CASE(type, name, format, cast)                                                                          \
    case STACK_TYPE_##type:                                                                                            \
        IF_PRESENT(ARRAY_OF(name), printf(format, (cast)ARRAY_OF(name)[position]));
#define BYTES_CASE(type, name)                                                                                         \
    case STACK_TYPE_##type:                                                                                            \
        IF_PRESENT(ARRAY_OF(name), printBytes(ARRAY_OF(name)[position].byte, sizeof(ARRAY_OF(name)[position].byte)));

static void printNumber(const CO_OD_DATA_VARIABLES_T *p, int type, int constant, unsigned position)
{
    switch (type) {
        NUMBERS(NUMBER_CASE)
        BYTES(BYTES_CASE)
    default: /* a text, or a type that the stack keeps in no array it is told of */
        printf("-");
        break;
    }
}

/* The bytes of a text, as many as the device serves. */
static void printText(const VIS_STRING *pTexts, const UNSIGNED32 *pSizes, unsigned position)
{
    UNSIGNED32 i;

    if (pTexts == NULL || pSizes == NULL) {
        printf("missing");
        return;
    }
    printf("text ");
    for (i = 0; i < pSizes[position]; ++i)
        printf("%02x", (unsigned char)pTexts[position][i]);
}

static void printConstant(const CO_OD_DATA_VARIABLES_T *p, int type, unsigned position)
{
    switch (type) {
    case STACK_TYPE_VS:
    case STACK_TYPE_STRING_NULL:
    case STACK_TYPE_OS:
    case STACK_TYPE_OCTET_STRING:
        printText(p->od_const_vis_string, p->od_const_vis_string_len, position);
        break;
#ifdef CO_UTF8_DATA_TYPE
    case STACK_TYPE_UTF8:
        printText(p->od_const_utf8_string, p->od_const_utf8_string_len, position);
        break;
#endif
    default:
        printNumber(p, type, 1, position);
        break;
    }
}

static void printName(const void *pVar)
{
    const VARIABLE_T *p;

    for (p = walkerVariables; p->name != NULL; ++p) {
        if (p->pVar == pVar) {
            printf("%s", p->name);
            return;
        }
    }
    printf("unknown");
}

#define NAME_CASE(type, name, ...)                                                                                     \
    case STACK_TYPE_##type:                                                                                            \
        IF_PRESENT(p->od_ptr_##name, printName(p->od_ptr_##name[position]));

static void printNameAndSize(const void *pVar, const UNSIGNED32 *pSizes, unsigned position)
{
    printName(pVar);
    printf("/%lu", pSizes == NULL ? 0ul : (unsigned long)pSizes[position]);
}
#define TEXT_OF(name) IF_PRESENT(p->name, printNameAndSize(p->name[position], p->name##_len, position))

static void printVariable(const CO_OD_DATA_VARIABLES_T *p, int type, unsigned position)
{
    switch (type) {
        NUMBERS(NAME_CASE)
        BYTES(NAME_CASE)
    case STACK_TYPE_VS:
    case STACK_TYPE_STRING_NULL:
        TEXT_OF(od_vis_string);
    case STACK_TYPE_OS:
    case STACK_TYPE_OCTET_STRING:
        TEXT_OF(od_octet_string);
#ifdef CO_UTF8_DATA_TYPE
    case STACK_TYPE_UTF8:
        TEXT_OF(od_utf8_string);
#endif
    case STACK_TYPE_DOMAIN:
        printf("domain %u%s", position, p->od_domain == NULL ? " missing" : "");
        break;
    default:
        printf("-");
        break;
    }
}

/* ---- The dump ---------------------------------------------------------------------------------------------------- */

static void printAttributes(unsigned attributes)
{
    static const struct
    {
        unsigned mask;
        const char *name;
    } names[] = {
        {CO_ATTR_NUM, "num"},      {CO_ATTR_READ, "read"},      {CO_ATTR_WRITE, "write"}, {CO_ATTR_MAP_TR, "tpdo"},
        {CO_ATTR_MAP_REC, "rpdo"}, {CO_ATTR_DEFVAL, "default"}, {CO_ATTR_LIMIT, "limit"}, {CO_ATTR_STORE, "store"},
    };
    const char *separator = "";
    size_t i;

    for (i = 0; i < sizeof(names) / sizeof(names[0]); ++i) {
        if ((attributes & names[i].mask) != 0) {
            printf("%s%s", separator, names[i].name);
            separator = ",";
        }
    }
}

#ifdef CO_CONFIG_LIMIT_CHECK
static int hasLimits(int type)
{
#define YES_CASE(name, ...)                                                                                            \
    case STACK_TYPE_##name:                                                                                            \
        return 1;
    switch (type) {
        NUMBERS(YES_CASE)
    default:
        return 0;
    }
}
#endif

static void printSub(const STACK_DICTIONARY_T *pDictionary, unsigned line, const CO_OD_ASSIGN_T *pObject,
                     unsigned subIndex)
{
    const CO_OBJECT_DESC_T *pDesc = findSub(pDictionary, pObject, subIndex);
    const CO_OD_DATA_VARIABLES_T *p = pDictionary->pVariables;
    unsigned position;
    int type;

    if (pDesc == NULL)
        return;
    type = typeOf(pDesc);
    /* The subindices that share a row have elements of their own, one behind the other. */
    position = pDesc->value + (subIndex - pDesc->subIndex);
    printf("%u 0x%04x:%u %s %s %s ", line, pObject->index, subIndex, objectTypeName(pObject->odType), typeName(type),
           specifierName(specifierOf(pDesc)));
    printAttributes(pDesc->attributes);
    printf(" default ");
    printNumber(p, type, 1, pDesc->defaultValue);
#ifdef CO_CONFIG_LIMIT_CHECK
    if (hasLimits(type) && (pDesc->attributes & CO_ATTR_LIMIT) != 0 && (pDesc->attributes & CO_ATTR_WRITE) != 0) {
        printf(" limits ");
        printNumber(p, type, 1, pDesc->lowerLimit);
        printf(" to ");
        printNumber(p, type, 1, pDesc->upperLimit);
    }
#endif
    printf(" value ");
    switch (specifierOf(pDesc)) {
    case CO_DSPEC_CONST:
        printConstant(p, type, pDesc->value);
        break;
    case CO_DSPEC_VAR:
        printNumber(p, type, 0, position);
        break;
    case CO_DSPEC_PTR:
        printVariable(p, type, position);
        break;
    default:
        if (type == STACK_TYPE_DOMAIN)
            printVariable(p, type, position);
        else
            printf("%u", pDesc->value);
        break;
    }
    putchar('\n');
}

void dumpDictionaries(void)
{
    unsigned line;
    unsigned index;
    unsigned subIndex;

    for (line = 0; line < STACK_LINES; ++line) {
        const STACK_DICTIONARY_T *pDictionary = &stackDictionaries[line];

        if (!pDictionary->present)
            continue;
        printf("line %u: %u objects\n", line, pDictionary->assignCnt);
        for (index = 0x1000; index <= 0xffff; ++index) {
            const CO_OD_ASSIGN_T *pObject = findObject(pDictionary, (UNSIGNED16)index);

            for (subIndex = 0; pObject != NULL && subIndex <= pObject->highestSub; ++subIndex)
                printSub(pDictionary, line, pObject, subIndex);
        }
    }
}
