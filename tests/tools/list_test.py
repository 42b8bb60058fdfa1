"""list, its map from lines to elements, and reduce."""
import json
import unittest
import xml.etree.ElementTree

import sequences
import tool

LINE = '["SVG_DrawLine",[0,0],[9,9]]'


def paths_of(document):
    """The paths of all elements but those inside SVG pictures."""
    names = {'{http://www.w3.org/2000/svg}': '', '{urn:velumark:svg:1}': 'velumark:'}
    paths = set()

    def walk(element, path):
        paths.add(path)
        if (element.get('id') or '').startswith('QZ_G'):
            return
        counts = {}
        for child in element:
            tag = child.tag
            for space, prefix in names.items():
                tag = tag.replace(space, prefix)
            counts[tag] = counts.get(tag, 0) + 1
            walk(child, f'{path}/{tag}[{counts[tag]}]')

    walk(xml.etree.ElementTree.fromstring(document), '/svg')
    return paths


class List(tool.InFolder):
    def check_map(self, page):
        document = tool.run('replay', page)
        mapped = tool.run('list', '--map', page)
        self.assertEqual((mapped.returncode, document.returncode), (0, 0), mapped.stderr)
        lines = json.loads(mapped.stdout)
        found = [path for paths in lines.values() for path in paths]
        self.assertEqual(len(found), len(set(found)))
        self.assertEqual(set(found), paths_of(document.stdout))

    def test_map_of_pages(self):
        for page in tool.recordings():
            with self.subTest(page=page):
                self.check_map(page)

    def test_map_of_sequences(self):
        for seed, text in enumerate(sequences.sequences(tool.SEQUENCES)):
            self.write('page.jsonl', text)
            with self.subTest(seed=seed):
                self.check_map(self.folder / 'page.jsonl')

    def test_listing(self):
        self.write('page.jsonl', '\n'.join([
            tool.CREATE, '["SVG_SetStroke",128,255,0,0,7]', '["SVG_SetFont","a b",40,1,0]',
            '["SVG_BeginLink",1,"x"]', LINE, '["SVG_EndLink"]',
            '["SVG_DrawText","hi",[1,2],null,100]']))
        rows = [row.split('\t') for row in self.run_tool('list', 'page.jsonl').stdout.splitlines()]
        state = 'fill #000000, stroke #ff0000/128 7, font italic 40 a b'
        self.assertEqual(rows[0], ['1', tool.CREATE, '/svg', 'fill #000000'])
        self.assertEqual(rows[4:], [
            ['5', LINE, '/svg/a[1]/line[1]', state + ', group of line 4'],
            ['6', '["SVG_EndLink"]', '-', state],
            ['7', '["SVG_DrawText","hi",[1,2],null,100]', '/svg/text[1]', state]])
        self.run_tool('replay', 'page.jsonl', '-o', 'page.svg')
        listed = self.run_tool('list', 'page.svg')
        if 'without expat' in listed.stderr:
            self.skipTest('this build lists no documents')
        self.assertTrue(listed.stdout.splitlines()[-1].startswith('/svg/text[1]\ttext x="1" y="2"'))
        counted = self.run_tool('list', '--statistics', 'page.jsonl').stdout
        self.assertEqual(counted, self.run_tool('list', '--statistics', 'page.svg').stdout)
        self.assertIn('  1\tline\n', counted)

    @unittest.skipUnless(tool.IS_NATIVE, 'there is no sh')
    def test_reduce(self):
        """A planted fault comes out alone, and the original stays."""
        fault = '["SVG_DrawText","wrong",[5,5],null,100]'
        lines = [tool.CREATE, *[LINE] * 100, '["SVG_SetFont","wide",20,0,0]', *[LINE] * 200, fault,
                 *[LINE] * 60, '{"problems":[]}', LINE[:-4]]  # the last one is cut off
        self.write('page.jsonl', '\n'.join(lines))
        command = ['reduce', 'page.jsonl', '-o', 'small.jsonl', '--', 'sh', '-c',
                   '! { grep -q wide "$1" && grep -q wrong "$1"; }', 'sh', '{}']
        result = self.run_tool(*command)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual((self.folder / 'small.jsonl').read_text(),
                         '\n'.join([tool.CREATE, lines[101], fault, '']))
        self.assertRegex(result.stderr, r'2 of 362 calls, in \d\d runs')
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         ['page.jsonl', 'small.jsonl'])
        self.assertIn('does not fail', self.run_tool(*command[:5], 'true').stderr)
        self.assertIn('is the input', self.run_tool(
            'reduce', 'page.jsonl', '-o', 'page.jsonl', '--', 'false').stderr)


unittest.main()
