// What may pass from a page into the document that shows it: an allow-list of elements, attributes
// and style rules. Nothing in it runs or loads anything, and what a page or a picture names or
// styles stays within it.

const SVG = 'http://www.w3.org/2000/svg';

const ELEMENTS = new Set(
  `svg g defs symbol use switch a text tspan textPath path rect circle ellipse line polyline polygon
  image clipPath mask pattern marker linearGradient radialGradient stop filter feBlend
  feColorMatrix feComponentTransfer feComposite feConvolveMatrix feDiffuseLighting
  feDisplacementMap feDistantLight feDropShadow feFlood feFuncA feFuncB feFuncG feFuncR
  feGaussianBlur feMerge feMergeNode feMorphology feOffset fePointLight feSpecularLighting
  feSpotLight feTile feTurbulence`.split(/\s+/));

// Both attributes and the properties of style rules.
const PRESENTATION = new RegExp(
  `^(?:alignment-baseline|baseline-shift|clip|clip-path|clip-rule|color|color-interpolation.*|cx|cy|d
  |direction|display|dominant-baseline|fill|fill-.*|filter|flood-.*|font|font-.*|height|image-rendering
  |isolation|letter-spacing|lighting-color|marker|marker-.*|mask|mask-.*|mix-blend-mode|opacity|overflow
  |paint-order|pointer-events|r|rx|ry|shape-rendering|stop-.*|stroke|stroke-.*|text-.*|transform
  |transform-.*|unicode-bidi|vector-effect|visibility|white-space.*|width|word-spacing|writing-mode|x|y
  )$`.replace(/\s+/g, ''));
const ATTRIBUTES = new Set(
  `amplitude azimuth baseFrequency bias clipPathUnits diffuseConstant divisor dx dy edgeMode elevation
  exponent fr fx fy gradientTransform gradientUnits href id class style in in2 intercept k1 k2 k3 k4
  kernelMatrix kernelUnitLength lang lengthAdjust limitingConeAngle markerHeight markerUnits markerWidth
  maskContentUnits maskUnits method mode name numOctaves offset operator order orient pathLength
  patternContentUnits patternTransform patternUnits points position preserveAlpha preserveAspectRatio
  primitiveUnits purpose radius refX refY requiredExtensions result rotate scale seed side slope spacing
  specularConstant specularExponent spreadMethod startOffset stdDeviation stitchTiles surfaceScale
  systemLanguage tableValues targetX targetY textLength type values viewBox x1 x2 xChannelSelector xlink:href
  xml:lang xml:space y1 y2 yChannelSelector z`.split(/\s+/));
const FUNCTIONS = new Set(
  `rgb rgba hsl hsla hwb lab lch oklab oklch color calc min max clamp matrix translate translateX
  translateY scale scaleX scaleY rotate skewX skewY polygon circle ellipse inset path blur brightness
  contrast drop-shadow grayscale hue-rotate invert opacity saturate sepia`.split(/\s+/));

const NAME = String.raw`(?:[\w-]|[^\0-\x7f])+`;
const BRACKET = String.raw`\[(?:"[^"]*"|[^\]"])*\]`;
const PSEUDO = String.raw`:[\w-]+(?:\([^()]*\))?`;
const SIMPLE = `[.#]?${NAME}|\\*|${BRACKET}`;
const TOKENS = new RegExp(String.raw`${SIMPLE}|${PSEUDO}|\s*[>+~,]\s*|\s+`, 'g');
const NAMES = new RegExp(`${BRACKET}|([.#])(${NAME})`, 'g');
const COMPOUNDS = new RegExp(`(?=[^\\s>+~,])((?:${SIMPLE})*)((?:${PSEUDO})*)`, 'g');

/** @typedef {import('./text.js').Font} Font */

/** @param {string} name */
const unquoted = name => name.trim().replace(/^(["'])(.*)\1$/, '$2');

/** @type {Map<string, boolean>} */
const known = new Map();

/** @param {string} name */
function isAllowed(name) {
  let allowed = known.get(name);
  if (allowed === undefined) {
    allowed = ATTRIBUTES.has(name) || PRESENTATION.test(name) || name.startsWith('velumark:');
    known.set(name, allowed);
  }
  return allowed;
}

/**
 * Where names and rules hold: the page, or one picture of it.
 */
export class Scope {
  /**
   * @param {string} prefix
   * @param {Map<string, string>} shared by all pages: the classes of their fonts, and the families of
   *   the font files that they bring. New rules and fonts make a browser look at all pages again, so
   *   that what comes again must not bring any.
   * @param {Scope} [page] of a picture
   */
  constructor(prefix, shared, page) {
    this.prefix = prefix;
    this.page = page;
    this.picture = Boolean(page);
    this.shared = shared;
    /** @type {string[]} rules for the shadow root */
    this.rules = [];
    /** @type {{family: string, source: string, descriptors: Record<string, string>}[]} */
    this.fonts = [];
    /** @type {Map<string, Font & {name: string}>} what the page's classes mean */
    this.classes = new Map();
    /** @type {Map<string, string>} families that a picture brings with it, for its page as well */
    this.families = new Map();
    this.styled = false;
  }

  /** A value whose references lead to this scope, or null if it could load anything. @param {string} value */
  value(value) {
    if (value.includes('\\')) return null;
    const local = value.replace(/url\(\s*(["']?)#([^"'()\s]+)\1\s*\)/gi, (_, _quote, id) => `url(#${this.prefix}${id})`);
    for (const [, name, start] of local.matchAll(/([\w-]*)\(\s*(.?)/g))
      if (!(FUNCTIONS.has(name) || (name.toLowerCase() === 'url' && start === '#'))) return null;
    return local;
  }

  /** @param {string} value */
  family(value) {
    return value.replace(/"[^"]*"|'[^']*'|[^,"']+/g, each => {
      const own = this.families.get(unquoted(each));
      return own ? `"${own}"` : each;
    });
  }

  /** What a declaration or attribute of this name may say here. @param {string} name @param {string} value */
  property(name, value) {
    if (name === 'font-family') return this.family(value);
    return value.includes('(') || value.includes('\\') ? this.value(value) : value;
  }

  /** @param {CSSStyleDeclaration} style */
  declarations(style) {
    let result = '';
    for (const name of style) {
      const value = PRESENTATION.test(name) && this.property(name, style.getPropertyValue(name));
      if (value) result += `${name}:${value}${style.getPropertyPriority(name) && '!important'};`;
    }
    return result;
  }

  /**
   * A selector that reaches nothing but this picture: its names are the picture's own, and each of
   * its compounds asks for the picture's mark, since an ancestor's would not be seen through `use`.
   * @param {string} selector @returns {string | null}
   */
  selector(selector) {
    if (selector.replace(TOKENS, '')) return null;
    return selector
      .replace(NAMES, (name, kind, rest) => (kind ? kind + this.prefix + rest : name))
      .replace(COMPOUNDS, (_, names, pseudo) => `${names}:where(.${this.prefix})${pseudo}`);
  }

  /** @param {Iterable<CSSRule>} rules @returns {string} */
  confined(rules) {
    let result = '';
    for (const rule of rules) {
      if (rule instanceof CSSStyleRule) {
        const selector = this.selector(rule.selectorText);
        const body = this.declarations(rule.style);
        if (selector && body) result += `${selector}{${body}}`;
      } else if (rule instanceof CSSMediaRule) {
        result += `@media ${rule.media.mediaText}{${this.confined(rule.cssRules)}}`;
      }
    }
    return result;
  }

  /** Families with the same faces are one. @param {CSSRule[]} rules */
  addFonts(rules) {
    /** @type {Map<string, {source: string, descriptors: Record<string, string>}[]>} */
    const families = new Map();
    for (const rule of rules) {
      if (!(rule instanceof CSSFontFaceRule)) continue;
      const { style } = rule;
      const family = unquoted(style.getPropertyValue('font-family'));
      const source = /url\("(data:[^"\\]*)"\)/.exec(style.getPropertyValue('src'))?.[1];
      if (!source) continue;
      const descriptors = { style: style.getPropertyValue('font-style') || 'normal', weight: style.getPropertyValue('font-weight') || 'normal' };
      const faces = families.get(family) ?? [];
      faces.push({ source, descriptors });
      families.set(family, faces);
    }
    for (const [family, faces] of families) {
      const key = JSON.stringify(faces);
      let own = this.shared.get(key);
      if (!own) {
        own = this.prefix + family;
        this.shared.set(key, own);
        for (const face of faces) this.fonts.push({ family: own, ...face });
      }
      for (const scope of [this, this.page]) scope?.families.set(family, own);
    }
  }

  /** @param {CSSStyleRule} rule */
  addFontClass({ selectorText, style }) {
    style.fontFamily = this.family(style.fontFamily);
    const { font, fontSize } = style;
    if (!font) return;
    let name = this.shared.get(font);
    if (!name) {
      name = `font${this.shared.size}`;
      this.shared.set(font, name);
      this.rules.push(`.${name}{font:${font}}`);
    }
    this.classes.set(selectorText.slice(1), { name, css: font, size: parseFloat(fontSize) });
  }

  /** @param {string} value */
  classNames(value) {
    const names = value.trim().split(/\s+/);
    return names.map(name => this.picture ? this.prefix + name : this.classes.get(name)?.name ?? '').join(' ').trim();
  }

  /** Takes over style sheets: of a page their fonts, of a picture all that they may say. @param {string[]} texts */
  addSheets(texts) {
    const rules = texts.flatMap(text => {
      const sheet = new CSSStyleSheet();
      sheet.replaceSync(text);  // leaves imports out
      return [...sheet.cssRules];
    });
    if (!this.picture) {
      for (const rule of rules)
        if (rule instanceof CSSStyleRule && /^\.QZ_fnt\d+$/.test(rule.selectorText)) this.addFontClass(rule);
      return;
    }
    this.styled = texts.length > 0;
    this.addFonts(rules);
    this.rules.push(this.confined(rules));
  }
}

const scratch = document.createElement('span').style;

/** @param {Element} element @param {Scope} scope */
function cleanAttributes(element, scope) {
  for (const { name, value } of [...element.attributes]) {
    let kept = isAllowed(name) ? value : null;
    if (name === 'style') {
      element.removeAttribute(name);
      scratch.cssText = value;
      // A policy that forbids style attributes allows this.
      /** @type {SVGElement} */ (element).style.cssText = scope.declarations(scratch);
      continue;
    }
    if (name === 'id') kept = scope.prefix + value;
    else if (name === 'class') kept = scope.classNames(value);
    else if (name.startsWith('velumark:')) kept = scope.picture ? null : value;
    else if (name === 'href' || name === 'xlink:href') kept = reference(element, value, scope);
    else if (kept !== null) kept = scope.property(name, value);
    if (kept === null) element.removeAttribute(name);
    else if (kept !== value) element.setAttribute(name, kept);
  }
}

/** Links get their address back where they are understood. @param {Element} element @param {string} value @param {Scope} scope */
function reference({ localName }, value, scope) {
  if (localName === 'image') return /^data:image\//i.test(value) ? value : null;
  return localName !== 'a' && value.startsWith('#') ? `#${scope.prefix}${value.slice(1)}` : null;
}

/**
 * Cleans what lies below an element, in place.
 * @param {Element} root @param {Scope} scope
 */
export function sanitize(root, scope) {
  const styles = [...root.querySelectorAll('style')];
  scope.addSheets(styles.map(style => style.textContent ?? ''));
  for (const style of styles) style.remove();
  cleanChildren(root, scope);
}

/** @param {Element} parent @param {Scope} scope */
function cleanChildren(parent, scope) {
  let next;
  for (let node = parent.firstChild; node; node = next) {
    next = node.nextSibling;
    if (node instanceof Text) continue;
    if (!(node instanceof Element) || !isElementAllowed(node, scope)) {
      node.remove();
      continue;
    }
    cleanAttributes(node, scope);
    if (scope.styled) node.classList.add(scope.prefix);
    cleanChildren(node, scope);
  }
}

/** @param {Element} element @param {Scope} scope */
function isElementAllowed({ localName, namespaceURI }, scope) {
  return namespaceURI === SVG && (ELEMENTS.has(localName) || (localName === 'velumark:target' && !scope.picture));
}

/**
 * Cleans the pictures of a page, each in a scope of its own. Returns the scopes.
 * @param {Element} root the pictures' groups and the symbols that place them
 * @param {Scope} page
 */
export function sanitizePictures(root, page) {
  const scopes = [];
  for (const element of [...root.children]) {
    const picture = /^QZ_G\d+$/.test(element.id);
    const scope = picture ? new Scope(`${page.prefix}${element.id}_`, page.shared, page) : page;
    if (!picture && !/^QZ_S\d+$/.test(element.id)) {
      element.remove();  // what broke out of a picture
      continue;
    }
    cleanAttributes(element, page);
    sanitize(element, scope);
    if (picture) scopes.push(scope);
  }
  return scopes;
}

const MOST_REFERENCES = 5_000;

/** @param {Element} use */
const addressOf = use => (use.getAttribute('href') ?? use.getAttribute('xlink:href') ?? '').slice(1);

/**
 * Takes away each `use` by which a page would come to refer to more than can be shown: twelve levels
 * of ten references each are a trillion elements.
 * @param {Element} page
 */
export function limitReferences(page) {
  const targets = new Map([...page.querySelectorAll('[id]')].reverse().map(element => [element.id, element]));
  /** @type {Map<Element, number>} */
  const counts = new Map();
  let left = MOST_REFERENCES;
  /** How many references an element stands for. @param {Element | undefined} element @returns {number} */
  const count = element => {
    if (!element) return 0;
    let result = counts.get(element);
    if (result !== undefined) return result;
    counts.set(element, Infinity);  // met again, it contains itself
    result = 0;
    for (const use of element.querySelectorAll('use')) {
      const more = 1 + count(targets.get(addressOf(use)));
      if (result + more > MOST_REFERENCES) use.remove();
      else result += more;
    }
    counts.set(element, result);
    return result;
  };
  for (const use of page.querySelectorAll('use')) {
    if (use.closest('defs')) continue;
    const more = count(targets.get(addressOf(use)));
    if (more > left) use.remove();
    else left -= more;
  }
}
