"""What lint says of browsers holds in one: the bad page is drawn otherwise than the one as advised,
or refused. All pages are measured in one run of Chromium.

    readers_test.py PROGRAM REPOSITORY RECORDINGS CHROMIUM
"""
import unittest

import lint_pages as pages
import reading
import tool

CHROMIUM = tool.MORE[0]

# Lost or refused: seen as fewer pixels, or none. Of the others another picture is seen.
LESS = {'xml-character', 'font-family', 'path-start', 'path-curves', 'line-without-stroke',
        'stroke-width-0', 'invisible-shape', 'invert-flat-line', 'picture-bounds', 'picture-format',
        'svg-broken', 'svg-not-found', 'block-no-character', 'block-reference', 'block-parts',
        'block-outline', 'block-relative'}
OTHER = {'negative-x', 'crlf-in-run', 'surrogate-in-run', 'no-font', 'font-size', 'rtl-forward',
         'path-after-close', 'rounded-corners', 'reversed-rectangle', 'filled-line', 'clip-lost',
         'clip-cut-overlap', 'clip-in-group', 'invert-late', 'block-origin'}


class Readers(tool.InFolder):
    def test_pairs(self):
        tested = [(rule, bad, advised) for rule, bad, _, advised in pages.PAIRS
                  if rule in LESS | OTHER]
        family = [(pages.call('SetFont', f'{q}{name}{q}', 80, 0, 0) + '\n' +
                   pages.call('DrawText', 'name', [100, 500], None, 100))
                  for q in ('', '"') for name in ['Univers 55']]
        tested.append(('font-family', *family))
        self.assertEqual({rule for rule, *_ in tested}, LESS | OTHER)
        seen = reading.measure(CHROMIUM,
                               [self.document(page) for _, *both in tested for page in both])
        for (rule, bad, _), wrong, right in zip(tested, seen[::2], seen[1::2]):
            with self.subTest(rule=rule, bad=bad, wrong=wrong, right=right):
                if rule in LESS:
                    self.assertLess(wrong['count'], 0.9 * right['count'])
                else:
                    self.assertNotEqual(wrong, right)
        print(f'{len(tested)} pairs measured')


unittest.main()
