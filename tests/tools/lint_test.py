"""Each rule: the bad page gives exactly it, at its line; the page as advised gives nothing."""
import json
import re
import unittest

import tool
from lint_pages import BAD_FAMILIES, GOOD_FAMILIES, LINE, LINK, PAIRS, REMARKS, call, svg


class Lint(tool.InFolder):
    def lint(self, lines, *options, create=tool.CREATE):
        self.write('page.jsonl', create + '\n' + lines)
        result = self.run_tool('lint', '--json', 'page.jsonl', *options)
        self.assertEqual(result.stderr, '')
        found = [(each['id'], each['line'] - 1) for each in json.loads(result.stdout)]
        errors = any(each['severity'] == 'error' for each in json.loads(result.stdout))
        self.assertEqual(result.returncode, int(errors))
        return found

    def reads_xml(self):
        self.write('x.svg', '<svg/>')
        return 'without expat' not in self.run_tool('lint', 'x.svg').stderr

    def test_pairs(self):
        reads_xml = self.reads_xml()
        for rule, bad, line, advised in PAIRS:
            if rule.startswith('svg-') and rule != 'svg-not-found' and not reads_xml:
                continue
            with self.subTest(rule=rule, bad=bad):
                self.assertEqual(self.lint(bad), [(rule, line)])
                self.assertEqual(self.lint(advised), [])
        for rule, bad, line in REMARKS:
            if rule.startswith('svg-') and not reads_xml:
                continue
            with self.subTest(rule=rule, bad=bad):
                self.assertEqual(self.lint(bad), [])
                self.assertEqual(self.lint(bad, '--all'), [(rule, line)])

    def test_pages(self):
        for rule, page in [('page-size', [0, 0, 0, 9]), ('page-origin', [5, 0, 900, 900])]:
            self.assertEqual(self.lint('', create=call('Create', page)), [(rule, 0)])

    def test_families(self):
        for families, expected in [(BAD_FAMILIES, [('font-family', 1)]), (GOOD_FAMILIES, [])]:
            for family in families:
                with self.subTest(family=family):
                    lines = call('SetFont', family, 40, 0, 0)
                    self.assertEqual(self.lint(lines), [])  # it is not used
                    lines += '\n' + call('DrawText', 'a', [9, 9], None, 100)
                    self.assertEqual(self.lint(lines), expected)

    def test_documents(self):
        """What can be seen in the document is found there, too, and leads to the call."""
        listed = self.run_tool('lint', '--rules').stdout
        if not self.reads_xml():
            self.skipTest('this build checks no documents')
        for rule, bad, line, advised in PAIRS:
            if re.search(f'^. `{rule}`[^|]*recordings', listed, re.M):
                continue
            with self.subTest(rule=rule, bad=bad):
                self.write('page.jsonl', tool.CREATE + '\n' + bad + '\n')
                for option in ['--utf16'] if rule == 'lone-surrogate' else ['--time', '--utf16']:
                    self.run_tool('replay', 'page.jsonl', '-o', 'page.svg', option)
                    result = self.run_tool('lint', '--json', 'page.svg', '--of', 'page.jsonl')
                    found = json.loads(result.stdout)
                    self.assertEqual([each['id'] for each in found], [rule])
                    # A font or picture that is used again is made by the first call.
                    self.assertEqual(found[0].get('call'), f'page.jsonl:{line + 1}')
                self.write('page.jsonl', tool.CREATE + '\n' + advised)
                self.run_tool('replay', 'page.jsonl', '-o', 'page.svg')
                self.assertEqual(self.run_tool('lint', 'page.svg').stdout, '')

    def test_each_rule_has_a_pair(self):
        listed = set(re.findall('^. `(.*?)`', self.run_tool('lint', '--rules').stdout, re.M))
        tested = {rule for rule, *_ in PAIRS + REMARKS}
        # These need more than one page or other files; they are tested below and above.
        others = {'font-family', 'page-size', 'page-origin', 'link-unresolved', 'svg-root-scan',
                  'not-well-formed'}
        self.assertEqual(listed, tested | others)

    def test_links_between_pages(self):
        self.write('a.jsonl', tool.CREATE + '\n' + LINK.replace('",1', '",2') + '\n')
        self.write('b.jsonl', tool.CREATE + '\n' + call('SetDocumentTarget', [9, 9], 'b') + '\n')
        self.assertEqual(self.run_tool('lint', 'a.jsonl', 'b.jsonl').stdout, '')
        told = self.run_tool('lint', '--pages', 'a.jsonl', 'b.jsonl').stdout
        self.assertRegex(told, r'^a.jsonl:2: warning: .*\[link-unresolved\]\n$')
        self.write('b.jsonl',
                   tool.CREATE + '\n' + call('SetDocumentTarget', [9, 9], 'https://a.example'))
        self.assertEqual(self.run_tool('lint', '--pages', 'a.jsonl', 'b.jsonl').stdout, '')

    def test_lost_attributes(self):
        if not self.reads_xml():
            self.skipTest('this build checks no documents')
        bad = svg(root=' viewBox="0 0 9 9" data-note="a&gt;b" fill="red"')
        self.assertEqual(self.lint(bad), [])
        self.assertIn(self.lint(svg(root=' viewBox="0 0 9 9" aria-hidden="true" fill="red"'))[0][0],
                      ['svg-root-scan', 'svg-broken'])

    def test_messages(self):
        self.write('page.jsonl', '\n'.join([tool.CREATE] + [LINE] * 5))
        lines = self.run_tool('lint', 'page.jsonl').stdout.splitlines()
        self.assertEqual(lines[0], 'page.jsonl:2: error: a line without a stroke: it is not seen; '
                         'set a stroke before it [line-without-stroke]')
        self.assertEqual(lines[3:], ['page.jsonl: and 2 more [line-without-stroke]'])
        self.assertEqual(len(self.run_tool('lint', '--all', 'page.jsonl').stdout.splitlines()), 5)
        result = self.run_tool('lint', '--disable', 'line-without-stroke', '--disable', 'far',
                               'page.jsonl')
        self.assertEqual((result.stdout, result.returncode), ('', 0))
        for arguments in [['none.jsonl'], ['page.jsonl', '--disable', 'line'], []]:
            self.assertEqual(self.run_tool('lint', *arguments).returncode, 2)

    def test_guide(self):
        guide = (tool.REPOSITORY / 'docs/integration.md').read_text('utf-8')
        self.assertIn(self.run_tool('lint', '--rules').stdout, guide,
                      'paste `qzsvggen lint --rules` into it')

    def test_counts_of_pages(self):
        if not self.reads_xml():
            self.skipTest('this build does not look into SVG pictures')
        stored = json.loads((tool.REPOSITORY / 'tests/tools/lint_counts.json').read_text())
        for page in tool.recordings():
            with self.subTest(page=page):
                counts = {}
                for each in json.loads(tool.run('lint', '--json', page).stdout):
                    counts[each['id']] = counts.get(each['id'], 0) + 1
                self.assertEqual(counts, stored.get(page.stem, {}))


unittest.main()
