// All tests in one process, so that each browser starts once.
import './cost.test.js';
import './fields.test.js';
import './package.test.js';
import './reading.test.js';
import './repair.test.js';
import './safety.test.js';
import './use.test.js';

if (!process.env.QZSVGGEN_RECORDINGS) console.log('QZSVGGEN_RECORDINGS names no folder of real pages: the sample is the only one.');
