/*
 * qzsvggen - turns the drawing of one document page into one SVG document.
 *
 * A page renderer creates a generator for a page, replays the page's drawing onto it with the
 * calls below, and gets back the finished document as UTF-16 text. The library draws nothing
 * itself, reads no file, no setting and no locale, and keeps nothing once a generator is deleted.
 *
 * A complete page:
 *
 *     RECT page = {0, 0, 2100, 2970};
 *     SvgGenerator* generator = SVG_Create(&page);
 *     if (generator == NULL) return out_of_memory();
 *
 *     RECT box = {100, 100, 600, 300};
 *     SVG_SetFill(generator, 255, 255, 200, 0);
 *     SVG_SetStroke(generator, 255, 0, 0, 0, 4);
 *     SVG_DrawRectangle(generator, &box);
 *
 *     int32_t size = SVG_Close(generator, NULL, 0);      // writes the document, tells its size
 *     SVG_Char* text = malloc((size_t)size * sizeof *text);
 *     SVG_Close(generator, text, size);                  // copies it, with a terminating zero
 *     SVG_Delete(generator);
 *
 * Conventions, true for every function unless it says otherwise:
 *
 *   Handle       A generator comes from SVG_Create and is the first argument of every other
 *                function but SVG_GetVersion. A null handle is ignored; a deleted one is
 *                undefined.
 *   Units        Coordinates are signed 32-bit integers in device units, x to the right, y down.
 *                They are written as they are given, never scaled. Differences that leave the
 *                32-bit range wrap around. Fractions occur only in opacities and in the natural
 *                size of SVG pictures.
 *   Text         UTF-16 code units in the machine's byte order, not necessarily zero-terminated,
 *                with a count of code units.
 *                Opaque data (form field type data, signature info data) comes with a size in
 *                bytes instead and is read as size / 2 code units. A count or size below 1 gives
 *                empty text, and the pointer is not read. Every host text is escaped:
 *                the five characters " & ' < > become entities, an embedded NUL becomes a TAB, a
 *                NUL in the last counted place is dropped. All other units, lone surrogates and
 *                control characters included, pass through unchanged.
 *   Colours      Four bytes, alpha first (0 transparent, 255 opaque), then red, green, blue.
 *   Lifetime     Arguments are only read, only during the call and only as far as their counts
 *                say (but see the data of a date field). The host may change or free them as
 *                soon as the call has returned.
 *   Threads      One thread at a time per generator. Generators share nothing, so any number of
 *                them may be used on different threads at once.
 *   Order        SVG_Create; then state, region and drawing calls in painting order; SVG_Close
 *                with a null buffer; SVG_Close with a buffer; SVG_Delete. A generator makes one
 *                page. After the first SVG_Close that wrote a document every function but
 *                SVG_Close and SVG_Delete does nothing: no region is current, none can be
 *                selected.
 *   Results      Almost every function returns 0 whatever happens. Results that inform:
 *                SVG_Create, SVG_Close, SVG_GetVersion, SVG_GetCurrentClippingRegion and
 *                SVG_SetCurrentClippingRegion.
 *   Memory       When memory is exhausted SVG_Create returns null and SVG_Close(null) returns 0.
 *                Any other call has no effect then, but that a picture, a character or a character
 *                block may have part of its effect (a definition without a use, say). The page
 *                stays consistent and usable. No exception leaves the library.
 *   Undefined    A deleted handle, a null pointer where a value is read, a count that is larger
 *                than the array behind it. None of this is checked. A call that comes when it does
 *                nothing, after SVG_Close or outside a character block, say, reads nothing.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

/* The release of this header, as one number (major * 10000 + minor * 100 + patch) and as text. The
 * version of the interface itself is what SVG_GetVersion returns. */
#define QZSVGGEN_VERSION_MAJOR 1
#define QZSVGGEN_VERSION_MINOR 0
#define QZSVGGEN_VERSION_PATCH 0
#define QZSVGGEN_VERSION \
  (QZSVGGEN_VERSION_MAJOR * 10000 + QZSVGGEN_VERSION_MINOR * 100 + QZSVGGEN_VERSION_PATCH)
#define QZSVGGEN_QUOTED_VALUE(value) #value
#define QZSVGGEN_QUOTED(value) QZSVGGEN_QUOTED_VALUE(value)
#define QZSVGGEN_VERSION_STRING           \
  QZSVGGEN_QUOTED(QZSVGGEN_VERSION_MAJOR) \
  "." QZSVGGEN_QUOTED(QZSVGGEN_VERSION_MINOR) "." QZSVGGEN_QUOTED(QZSVGGEN_VERSION_PATCH)

/* Calling convention: cdecl, on every platform. Windows hosts that want `dllimport` define
 * QZSVGGEN_DLLIMPORT before including this header; it is never required. */
#if defined(_WIN32) && defined(QZSVGGEN_DLLIMPORT)
#define QZSVGGEN_API __declspec(dllimport)
#else
#define QZSVGGEN_API
#endif

#if defined(_WIN32)
#define QZSVGGEN_CALL __cdecl
#else
#define QZSVGGEN_CALL
#endif

#ifdef __cplusplus
#define QZSVGGEN_NOEXCEPT noexcept
extern "C" {
#else
#define QZSVGGEN_NOEXCEPT
#endif

/* One UTF-16 code unit: 16 bits on every platform. On Windows it is wchar_t, so a host's own
 * strings pass without a cast. */
#if defined(_WIN32)
typedef wchar_t SVG_Char;
#elif defined(__cplusplus)
typedef char16_t SVG_Char;
#else
typedef uint_least16_t SVG_Char;
#endif

/* POINT {x, y} and RECT {left, top, right, bottom}, signed 32-bit each, and the path point types.
 * On Windows these are the platform's own, from windows.h, which may be included before or after
 * this header; elsewhere they are defined here. A host that has its own there, of the same layout,
 * defines QZSVGGEN_HAS_POINT_AND_RECT and includes this header after them. */
#if defined(QZSVGGEN_HAS_POINT_AND_RECT)
#if defined(__cplusplus)
#define QZSVGGEN_ASSERT_LAYOUT(condition) \
  static_assert(condition, "POINT and RECT are signed 32-bit")
#else
#define QZSVGGEN_ASSERT_LAYOUT(condition) \
  _Static_assert(condition, "POINT and RECT are signed 32-bit")
#endif
QZSVGGEN_ASSERT_LAYOUT(sizeof(POINT) == 8 && offsetof(POINT, x) == 0 && offsetof(POINT, y) == 4);
QZSVGGEN_ASSERT_LAYOUT(sizeof(RECT) == 16 && offsetof(RECT, left) == 0 && offsetof(RECT, top) == 4);
QZSVGGEN_ASSERT_LAYOUT(offsetof(RECT, right) == 8 && offsetof(RECT, bottom) == 12);
#undef QZSVGGEN_ASSERT_LAYOUT
#else
typedef struct tagPOINT POINT;
typedef struct tagRECT RECT;
#endif
#if !defined(_WIN32) && !defined(QZSVGGEN_HAS_POINT_AND_RECT)
struct tagPOINT {
  int32_t x;
  int32_t y;
};
struct tagRECT {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};
#endif
#if !defined(_WIN32) && !defined(PT_MOVETO)
#define PT_CLOSEFIGURE 0x01 /* added to a line or a curve's last point: then close the figure */
#define PT_LINETO 0x02
#define PT_BEZIERTO 0x04 /* three in a row: two control points and the end point */
#define PT_MOVETO 0x06
#endif

/* The generator of one page. */
typedef struct SvgGenerator SvgGenerator;

/* Picture formats of SVG_DrawImage. */
#define SVG_IMAGE_PNG 4
#define SVG_IMAGE_JPEG 5
#define SVG_IMAGE_SVG 8

/* Form field types of SVG_BeginFormField. */
#define SVG_FIELD_CHECKBOX 14
#define SVG_FIELD_COMBOBOX 15
#define SVG_FIELD_TEXT 16
#define SVG_FIELD_DATE 17

/* Link types of SVG_BeginLink. */
#define SVG_LINK_EXTERNAL 1
#define SVG_LINK_INTERNAL 2

/* ---- The page ------------------------------------------------------------------------------ */

/*
 * Creates a generator for one page.
 *
 * page    the page's rectangle; its width (right - left) and height (bottom - top) become the
 *         root element's, negative ones as they are. It is also the region that the first
 *         exclusion starts from, see SVG_ExcludeClippingRegion.
 *
 * The page starts with an opaque black fill, no stroke, no font, no clip region and no open group.
 * Returns the handle, to be freed by SVG_Delete, or null when memory is exhausted.
 */
QZSVGGEN_API SvgGenerator* QZSVGGEN_CALL SVG_Create(const RECT* page) QZSVGGEN_NOEXCEPT;

/* Frees the generator with everything recorded, closed or not. Null is accepted. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_Delete(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/* Returns the version of this interface, 100. It needs no generator. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_GetVersion(void) QZSVGGEN_NOEXCEPT;

/*
 * Finishes the page and hands over its document, in two calls.
 *
 * SVG_Close(generator, NULL, 0) writes the document, releases the page and returns the size of the
 * buffer that the document needs: its length in UTF-16 code units plus one for the terminating
 * zero. It returns 0, which is never a size, when memory is exhausted or when the size would not
 * fit a signed 32-bit integer; the page is then unchanged, so the host may try again.
 *
 * SVG_Close(generator, buffer, size) copies the document and a terminating zero into the buffer and
 * forgets it. `size` counts code units and must be exactly what the first call returned: with any
 * other size nothing is written and the document is kept. Returns 0 in both cases.
 *
 * Before the first call, and after the document was handed over, the document is empty: a buffer
 * of size 1 is accepted and gets the zero. A further SVG_Close with a null buffer writes the
 * document of the emptied page: width and height 0 and no content, but still what inversion has
 * left (see SVG_BeginInvertPainting and SVG_InvertPath). It takes the place of a document that was
 * not handed over yet.
 *
 * The document is one svg element without an XML declaration and without line breaks of its own.
 * Extension attributes and the target element use the prefix velumark, namespace
 * urn:velumark:svg:1, declared when one is used.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_Close(SvgGenerator* generator, SVG_Char* buffer,
                                             int32_t size) QZSVGGEN_NOEXCEPT;

/* ---- Fill and stroke ----------------------------------------------------------------------- */

/*
 * Sets the fill of what is drawn from now on. Returns 0.
 * Alpha 0 paints no fill at all; 1 to 254 is written as an opacity.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_SetFill(SvgGenerator* generator, uint8_t alpha, uint8_t red,
                                               uint8_t green, uint8_t blue) QZSVGGEN_NOEXCEPT;

/*
 * Sets the stroke of what is drawn from now on. Returns 0.
 *
 * width    in device units. With alpha 0 or width 0 nothing is stroked. Rectangles are moved right
 *          and down, rounded ones inset, by half the width, rounded down, whatever the alpha.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_SetStroke(SvgGenerator* generator, uint8_t alpha,
                                                 uint8_t red, uint8_t green, uint8_t blue,
                                                 uint32_t width) QZSVGGEN_NOEXCEPT;

/* Draws without a stroke from now on; the fill stays. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_ClearStroke(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/* ---- Inversion ----------------------------------------------------------------------------- */

/*
 * Turns invert painting on: colours come out as their complements. Returns 0.
 * It takes effect with the next SVG_SetFill, SVG_SetStroke or SVG_ClearStroke: what is drawn before
 * one of them keeps the paint set earlier. Begin and End do not nest. The first such call brings a
 * filter into the definitions, of this and of every later document of the same generator.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_BeginInvertPainting(SvgGenerator* generator)
    QZSVGGEN_NOEXCEPT;

/* Turns invert painting off, with effect from the next paint call as above. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_EndInvertPainting(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/*
 * Inverts the area of a path. The arguments are those of SVG_DrawPath. Returns 0.
 *
 * The path goes into a mask in the definitions, and the content ends with a use of "#content"
 * through that mask; no element that the library makes has that id, it is the consumer's to give.
 * Filter, mask and use also appear in every later document of the same generator.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_InvertPath(SvgGenerator* generator, const POINT* points,
                                                  const uint8_t* types,
                                                  uint32_t count) QZSVGGEN_NOEXCEPT;

/*
 * Inverts a rectangle of the page: the whole content is drawn a second time through a filter that
 * is limited to the rectangle. It applies to content drawn before and after alike. Returns 0.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_InvertRectangle(SvgGenerator* generator,
                                                       const RECT* rectangle) QZSVGGEN_NOEXCEPT;

/* ---- Shapes -------------------------------------------------------------------------------- *
 *
 * A shape is painted with the current fill and stroke under the current clip region and goes into
 * the open group. While a character block is open, shapes are outlines of its newest character
 * instead, without paint and clip region of their own (see SVG_BeginCharacterBlock).
 */

/* Draws a line. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_DrawLine(SvgGenerator* generator, const POINT* from,
                                                const POINT* to) QZSVGGEN_NOEXCEPT;

/*
 * Draws a rectangle, as a path, moved right and down by half the stroke width. Returns 0.
 * A width below zero is written as the unsigned 32-bit number of the same bits.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_DrawRectangle(SvgGenerator* generator,
                                                     const RECT* rectangle) QZSVGGEN_NOEXCEPT;

/*
 * Draws a rectangle with rounded corners, inset by half the stroke width. Returns 0.
 *
 * cornerWidth, cornerHeight    size of the ellipse whose quarters form the corners, twice the radii
 * cornerMask                   0 draws a plain rectangle as SVG_DrawRectangle does; if any of the
 *                              bits 1, 2, 4, 8 is set all four corners are rounded; other bits
 *                              alone round none
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_DrawRoundedRectangle(SvgGenerator* generator,
                                                            const RECT* rectangle,
                                                            uint32_t cornerWidth,
                                                            uint32_t cornerHeight,
                                                            uint16_t cornerMask) QZSVGGEN_NOEXCEPT;

/* Draws an open line through the points. A count of 0 draws nothing. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_DrawPolyline(SvgGenerator* generator, const POINT* points,
                                                    uint32_t count) QZSVGGEN_NOEXCEPT;

/* Draws a closed figure through the points. A count of 0 draws nothing. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_DrawPolygon(SvgGenerator* generator, const POINT* points,
                                                   uint32_t count) QZSVGGEN_NOEXCEPT;

/*
 * Draws a path of lines and cubic curves. Returns 0.
 *
 * points    `count` points
 * types     `count` bytes, one a point: PT_MOVETO, PT_LINETO, PT_BEZIERTO, the last two with
 *           PT_CLOSEFIGURE added where the figure closes. Each figure starts with a move, which is
 *           written relative to the move before: a further figure is in its place only if the one
 *           before it was closed. Curve points come in threes. Other values are tolerated: 1 closes
 *           the figure, the rest write nothing, but what follows is measured from their points.
 *           After a curve point, until the next line or move, they count as one of its three.
 * count     0 draws a path without data
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_DrawPath(SvgGenerator* generator, const POINT* points,
                                                const uint8_t* types,
                                                uint32_t count) QZSVGGEN_NOEXCEPT;

/* ---- Text ---------------------------------------------------------------------------------- */

/*
 * Makes a font current; each distinct font that is used becomes one CSS class. Returns 0.
 *
 * family          family name, `familyLength` code units
 * size            in device units
 * italic, bold    non-zero means on
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_SetFont(SvgGenerator* generator, const SVG_Char* family,
                                               uint32_t familyLength, int32_t size, int32_t italic,
                                               int32_t bold) QZSVGGEN_NOEXCEPT;

/* Text drawn from now on has no font, until SVG_SetFont. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_ClearFont(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/*
 * Draws a run of text with the current font, fill and stroke. Returns 0.
 *
 * text                `length` code units; a length below 1 draws nothing
 * origin              left end of the baseline
 * advances            `length` widths, one a code unit, from each to the next; or null, and only
 *                     the start of the run is written
 * characterScaling    horizontal scaling in percent; 100 means none. It is recorded only with
 *                     advances, as the run's length and as velumark:characterScaling
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_DrawText(SvgGenerator* generator, const SVG_Char* text,
                                                int32_t length, const POINT* origin,
                                                const int32_t* advances,
                                                uint32_t characterScaling) QZSVGGEN_NOEXCEPT;

/* ---- Text as outlines ---------------------------------------------------------------------- */

/*
 * Opens a character block: text drawn as outlines, each distinct outline written once per page and
 * reused by reference. Returns 0.
 *
 * The block takes the current paint, clip region and open group. For each character the host calls
 * SVG_BeginCharacter and draws the outline with the shape functions, or SVG_SetCharacterReference.
 * Text, pictures, targets and groups meanwhile go where they always go, behind the block. A block
 * that is still open when another begins, or when the page closes, ends there.
 *
 * Outlines are the same when their geometry text is. Lines, polylines, polygons and rectangles are
 * compared relative to the character's position, paths as they are given. Rounded rectangles are
 * compared without their corners. The kind of shape does not count: a polygon through the points of
 * an earlier polyline is a use of that polyline.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_BeginCharacterBlock(SvgGenerator* generator)
    QZSVGGEN_NOEXCEPT;

/* Closes the character block. Without an open one it does nothing. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_EndCharacterBlock(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/*
 * Starts a character of the open block at a position; the shapes drawn next are its outline. Shapes
 * before a block's first character are ignored. Without an open block it does nothing. Returns 0.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_BeginCharacter(SvgGenerator* generator,
                                                      const POINT* position) QZSVGGEN_NOEXCEPT;

/* Does nothing: a character ends with the next one or with its block. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_EndCharacter(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/*
 * Adds a character that looks like an earlier one of the same block, whose first outline is reused.
 * Without an open block it does nothing. Returns 0.
 *
 * reference    index of the earlier character in this block, counted from 0 over all characters;
 *              one that is out of range, later, or without an outline of its own (a reference, too)
 *              adds nothing visible
 * position     where this character stands. One at (0, 0) is displaced by the position of the
 *              character whose outline it uses
 *
 * Shapes drawn next are the character's outline after all; the reference is forgotten then.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_SetCharacterReference(
    SvgGenerator* generator, uint32_t reference, const POINT* position) QZSVGGEN_NOEXCEPT;

/* ---- Pictures ------------------------------------------------------------------------------ */

/*
 * Places a picture. Returns 0.
 *
 * format    SVG_IMAGE_PNG, SVG_IMAGE_JPEG or SVG_IMAGE_SVG. The bytes of any other format are not
 *           stored: the placement shows the stored picture of the same bytes if there is one, else
 *           the next one that is stored, else nothing.
 * bounds    where the picture stands and how large it is shown
 * data      `length` bytes: the picture's file; a length below 1 draws nothing
 * quality   compression quality, recorded as velumark:compressionQuality unless it is 100; ignored
 *           for SVG pictures
 *
 * The same bytes placed again are stored once. Pictures are known again by a 32-bit hash: of two
 * PNG or JPEG files with one hash the first is shown for both, and a file whose hash is 0xFFFFFFFF
 * draws nothing. The hash of an SVG picture is that of its content.
 *
 * An SVG picture is UTF-8 or UTF-16 with a byte-order mark, or without one UTF-8 or little-endian
 * UTF-16 that begins with an ASCII character; white space must follow the "<svg" of its root
 * element. Any other picture draws nothing, UTF-16 big-endian without a mark for instance.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_DrawImage(SvgGenerator* generator, uint16_t format,
                                                 const RECT* bounds, const uint8_t* data,
                                                 int32_t length,
                                                 uint16_t quality) QZSVGGEN_NOEXCEPT;

/* ---- Clip regions -------------------------------------------------------------------------- *
 *
 * A region is made of rectangles and never changes: each call that alters the current region makes
 * a new one, which becomes current. Regions are numbered 0, 1, 2, ... on a page, in the order in
 * which they are made. One under which nothing is drawn is not written.
 */

/* Starts a region with one rectangle and makes it current; regions do not nest. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_BeginClippingRegion(SvgGenerator* generator,
                                                           const RECT* rectangle) QZSVGGEN_NOEXCEPT;

/*
 * Adds a rectangle to the current region; without one it does nothing, and `rectangle` may be null.
 * Returns 0.
 * Where added rectangles overlap, the overlap is left out (even-odd rule).
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_AddClippingRegion(SvgGenerator* generator,
                                                         const RECT* rectangle) QZSVGGEN_NOEXCEPT;

/*
 * Cuts a rectangle out of the current region, or out of the page when no region is current (which
 * makes two regions: the page, then the page with the cut). Returns 0.
 * A rectangle that lies inside an earlier cut ends clipping: afterwards no region is current. One
 * around earlier cuts takes the place of each; around two of them it stands there twice and so cuts
 * nothing. Where cuts overlap in part, the overlap shows again.
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL
SVG_ExcludeClippingRegion(SvgGenerator* generator, const RECT* rectangle) QZSVGGEN_NOEXCEPT;

/* Draws unclipped from now on; the region can be selected again by its number. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_EndClippingRegion(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/* Returns the number of the current region, or -1 when none is current. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_GetCurrentClippingRegion(SvgGenerator* generator)
    QZSVGGEN_NOEXCEPT;

/* Makes the region of that number current. Returns 0, or 1 (and changes nothing) when the page has
 * no such region. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_SetCurrentClippingRegion(SvgGenerator* generator,
                                                                uint32_t region) QZSVGGEN_NOEXCEPT;

/* ---- Document structures ------------------------------------------------------------------- *
 *
 * Form fields, links and signature fields are groups: what is drawn until the End call belongs to
 * them. At most one group is open. One that begins while another is open follows it, it never
 * nests. The three End functions are one: each closes whatever group is open, or does nothing.
 *
 * A group is clipped as a whole, by the region that is current when it begins; regions that become
 * current inside it do not clip its content, though they are written.
 */

/*
 * Opens a form field. Returns 0.
 *
 * fieldType       one of SVG_FIELD_*; of other values no type is written
 * fieldFlags      the host's flags, written as a number unless 0
 * exFieldFlags    the host's further flags, likewise
 * bounds          the field's rectangle
 * name            `nameLength` code units
 * typeData        `typeDataSize` bytes, read as code units. A date field's data starts with a
 *                 64-bit little-endian number, written in decimal, with the text behind it: for
 *                 SVG_FIELD_DATE at least eight bytes must be readable, whatever the size says
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_BeginFormField(SvgGenerator* generator, uint16_t fieldType,
                                                      uint8_t fieldFlags, uint8_t exFieldFlags,
                                                      const RECT* bounds, const SVG_Char* name,
                                                      int32_t nameLength, const void* typeData,
                                                      int32_t typeDataSize) QZSVGGEN_NOEXCEPT;

/* Closes the open group, whatever its kind. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_EndFormField(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/*
 * Opens a hyperlink. Returns 0.
 *
 * linkType    SVG_LINK_EXTERNAL or SVG_LINK_INTERNAL; other values give a link that leads nowhere
 * target      `targetLength` code units: an address, or the name of a document target. It is
 *             escaped but not judged: what addresses are safe is the host's decision
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_BeginLink(SvgGenerator* generator, uint16_t linkType,
                                                 const SVG_Char* target,
                                                 int32_t targetLength) QZSVGGEN_NOEXCEPT;

/* Closes the open group, whatever its kind. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_EndLink(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

/* Marks a position that links can lead to, inside the open group if there is one. Returns 0.
 * `name` has `nameLength` code units. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_SetDocumentTarget(SvgGenerator* generator,
                                                         const POINT* position,
                                                         const SVG_Char* name,
                                                         int32_t nameLength) QZSVGGEN_NOEXCEPT;

/*
 * Opens a signature field. Returns 0.
 *
 * bounds      the field's rectangle
 * name        `nameLength` code units
 * infoData    `infoDataSize` bytes, read as code units: the signature's description
 */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_BeginSignatureField(SvgGenerator* generator,
                                                           const RECT* bounds, const SVG_Char* name,
                                                           int32_t nameLength,
                                                           const SVG_Char* infoData,
                                                           int32_t infoDataSize) QZSVGGEN_NOEXCEPT;

/* Closes the open group, whatever its kind. Returns 0. */
QZSVGGEN_API int32_t QZSVGGEN_CALL SVG_EndSignatureField(SvgGenerator* generator) QZSVGGEN_NOEXCEPT;

#ifdef __cplusplus
}
#endif
