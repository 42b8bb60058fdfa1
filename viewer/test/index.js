// All tests in one process, so that each browser starts once.
import './cost.test.js';
import './fields.test.js';
import './package.test.js';
import './reading.test.js';
import './repair.test.js';
import './safety.test.js';
import './use.test.js';
