/*
 * How large a page becomes on the screen, and how DecompressToScreen is told so.
 *
 * The painter has a fit of its own, VELLUM_SHOW_FIT. It keeps the proportions of the numbers of pixels, so that a fax
 * of 204 x 98 dots per inch looks squashed, and a page turned by 90 degrees may be cut off. A viewer wants the whole
 * page in its true proportions: that is VELLUM_SHOW_BY_RESOLUTION, which gives a page its true size, with ratios that
 * bring this size to the window's. The ratios also make up for resolutions that the painter does not know in inches.
 */
#include "viewer.h"

/* A length on the screen, rounded as the painter does it. */
static LONG pixels(double length) {
    const LONG most = 0x7FFFFFF;
    return length < 0 ? 0 : length < most ? (LONG)(length + 0.5) : most;
}

static DWORD atLeastOne(double number) {
    return number < 1 ? 1 : (DWORD)number;
}

/*
 * One factor for both directions, with as many digits as a DWORD has room for. It is rounded down, if at all: a page
 * that is a hair smaller than the window needs no scroll bar.
 */
static void setRatios(DWORD ratios[4], double factor) {
    const double most = 0x3FFFFFFF;
    ratios[1] = ratios[3] = atLeastOne(factor > 1 ? most / factor : most);
    ratios[0] = ratios[2] = atLeastOne(factor < most ? factor * ratios[1] : most);
}

/* The page as it is turned: its width on the screen is then its height. */
static PageSize turnedPage(const PageSize *page, DWORD rotation) {
    PageSize turned = *page;
    if (rotation == VELLUM_ROTATE_90 || rotation == VELLUM_ROTATE_270) {
        turned.width = page->height;
        turned.height = page->width;
        turned.dotsPerInchX = page->dotsPerInchY;
        turned.dotsPerInchY = page->dotsPerInchX;
    }
    return turned;
}

/* What a length is on the screen in its true size. A page that tells no resolution has the screen's. */
static double trueLength(LONG length, double dotsPerInch, LONG screenDotsPerInch) {
    return dotsPerInch > 0 ? length / dotsPerInch * screenDotsPerInch : (double)length;
}

Placement placePage(const PageSize *page, const View *view, const SIZE *client, const SIZE *screenDotsPerInch) {
    const PageSize turned = turnedPage(page, view->rotation);
    const double width = trueLength(turned.width, turned.dotsPerInchX, screenDotsPerInch->cx);
    const double height = trueLength(turned.height, turned.dotsPerInchY, screenDotsPerInch->cy);
    double factor = 1;
    Placement placement = {view->rotation, {0, 0, 0, 0}, {turned.width, turned.height}};
    if (view->sizing == SIZING_FIT && width > 0 && height > 0) {
        factor = client->cx / width < client->cy / height ? client->cx / width : client->cy / height;
    }
    if (view->inverted) {
        placement.flags |= VELLUM_SHOW_INVERTED;
    }
    if (view->sizing != SIZING_PIXELS) {
        placement.flags |= VELLUM_SHOW_BY_RESOLUTION;
        placement.size.cx = pixels(width * factor);
        placement.size.cy = pixels(height * factor);
        setRatios(placement.ratios, factor * page->ratio);
    }
    return placement;
}
