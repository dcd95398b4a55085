"""Expressions of JavaScript that look at a page as a whole."""

# What reaches beyond the window; rounded, since letters may be wide by a fraction.
WIDER = """(() => {
  const wide = Array.from(document.body.querySelectorAll('*'))
    .map((each) => [Math.round(each.getBoundingClientRect().right), each.localName])
    .filter(([right]) => right > innerWidth).map((each) => each.join(' '));
  const page = document.documentElement.scrollWidth;
  return page > innerWidth ? [...wide, `page ${page}`] : wide;
})()"""

GROUND = "getComputedStyle(document.body).backgroundColor"

# The texts whose contrast against what is behind them is lower than WCAG 2 demands.
LOW_CONTRAST = """(() => {
  const parse = (colour) => colour.match(/[0-9.]+/g).map(Number);
  const luminance = (colour) => {
    const [red, green, blue] = parse(colour).map((value) => value / 255).map((value) =>
      value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4);
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
  };
  const behind = (element) => {
    const box = element.closest('a')?.querySelector('rect');
    if (box) return getComputedStyle(box).fill;
    const colour = getComputedStyle(element).backgroundColor;
    return parse(colour)[3] === 0 && element.parentElement ? behind(element.parentElement) : colour;
  };
  const contrast = (one, other) => {
    const [dark, light] = [luminance(one), luminance(other)].sort((a, b) => a - b);
    return (light + 0.05) / (dark + 0.05);
  };
  const hasText = (each) => Array.from(each.childNodes)
    .some((node) => node.nodeType === Node.TEXT_NODE && node.data.trim() !== '');
  const colourOf = (each) => getComputedStyle(each)[each.localName === 'text' ? 'fill' : 'color'];
  const texts = Array.from(document.body.querySelectorAll(':not(script)')).filter(hasText)
    .map((each) => [each.localName, colourOf(each), behind(each)]);
  for (const field of document.querySelectorAll('input[type=search]')) {
    texts.push(['input', getComputedStyle(field).color, behind(field)]);
    texts.push(['placeholder', getComputedStyle(field, '::placeholder').color, behind(field)]);
  }
  if (texts.length < 5) return ['there is no text'];
  return texts.filter(([, colour, ground]) => !(contrast(colour, ground) >= 4.5))
    .map(([name, colour, ground]) => `${name}: ${colour} on ${ground}`);
})()"""

FOCUS_IS_SEEN = """(() => {
  const style = getComputedStyle(document.activeElement);
  return document.activeElement.matches(':focus-visible') && style.outlineStyle === 'solid' &&
    parseFloat(style.outlineWidth) >= 2 && style.outlineColor !== getComputedStyle(document.body).backgroundColor;
})()"""

# What keeps people from using a page with a screen reader or the keyboard, of the rules of WCAG 2 that
# a program can check: language and title, landmarks, order of headings, names, references by id, roles,
# tables, and elements where they do not belong.
FAULTS = """(() => {
  const faults = [];
  const all = (selector) => Array.from(document.querySelectorAll(selector));
  const seen = (each) => each.checkVisibility({ visibilityProperty: true });
  const outline = (each) => each.outerHTML.slice(0, 120);
  const expect = (rule, holds, each) => { if (!holds) faults.push(`${rule}: ${each ? outline(each) : ''}`); };

  expect('language', document.documentElement.lang === 'en');
  expect('title', document.title.trim() !== '');
  expect('zoom', !/user-scalable|maximum-scale/.test(document.querySelector('meta[name=viewport]')?.content));
  expect('one main', all('main').length === 1);
  expect('one h1', all('h1').length === 1);

  // All that is seen belongs to a landmark.
  for (const each of Array.from(document.body.children).filter(seen))
    expect('landmark', each.matches('header, main, nav, footer, [role=search], script'), each);
  const names = all('nav').map((each) => each.getAttribute('aria-label'));
  expect('landmarks have different names', new Set(names).size === names.length);

  let level = 0;
  for (const each of all('h1, h2, h3, h4, h5, h6').filter(seen)) {
    const next = Number(each.localName[1]);
    expect('order of headings', next <= level + 1, each);
    expect('empty heading', each.textContent.trim() !== '', each);
    level = next;
  }

  const referenced = (each, attribute) => (each.getAttribute(attribute) || '').split(' ').filter(Boolean);
  for (const each of all('a, button, input, summary, svg, nav, output')) {
    const name = each.textContent.trim() || each.getAttribute('aria-label') || each.labels?.length;
    expect('name', name, each);
    const label = each.getAttribute('aria-label');
    const text = each.localName === 'svg' ? '' : each.textContent.trim();
    if (label && text && each.localName !== 'nav')
      expect('the name holds what is seen', label.toLowerCase().includes(text.toLowerCase()), each);
  }
  for (const attribute of ['for', 'aria-labelledby', 'aria-describedby', 'aria-controls']) {
    for (const each of all(`[${attribute}]`)) {
      for (const id of referenced(each, attribute)) expect('reference', document.getElementById(id), each);
    }
  }
  for (const each of all('a[href^="#"]')) {
    const id = decodeURIComponent(each.getAttribute('href').slice(1));
    expect('target', id === '' || document.getElementById(id), each);
  }
  const ids = all('[id]').map((each) => each.id);
  for (const id of ids.filter((each, place) => ids.indexOf(each) !== place)) faults.push(`repeated id: ${id}`);

  for (const each of all('li')) expect('list', each.parentElement.matches('ul, ol'), each);
  for (const each of all('ul, ol'))
    expect('items', Array.from(each.children).every((child) => child.localName === 'li'), each);
  for (const each of all('dt, dd')) expect('definition list', each.parentElement.matches('dl, dl > div'), each);
  for (const each of all('summary')) expect('summary', each.parentElement.localName === 'details', each);
  for (const each of all('table')) expect('table without heads', each.querySelector('th'), each);
  for (const each of all('img')) expect('alternative text', each.hasAttribute('alt'), each);
  for (const each of all('[tabindex]')) expect('order of the focus', each.tabIndex <= 0, each);
  for (const each of all('a, button, input, summary'))
    expect('control in a control', !each.parentElement.closest('a, button'), each);
  for (const each of all('[aria-hidden=true]'))
    expect('hidden control', !each.querySelector('a, button, input, summary'), each);
  return faults;
})()"""

# When the page could be typed into, since it was asked for.
READY = "Math.round(performance.getEntriesByType('navigation')[0].domContentLoadedEventEnd)"

# How long a key stroke takes until all is laid out.
KEY_STROKE = """(() => {
  const begin = performance.now();
  document.getElementById('filter').dispatchEvent(new Event('input'));
  document.body.getBoundingClientRect();
  return Math.round(10 * (performance.now() - begin)) / 10;
})()"""
