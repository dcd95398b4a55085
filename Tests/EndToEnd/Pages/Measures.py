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

# Links, buttons and fields that a screen reader could not name.
NAMELESS = """Array.from(document.querySelectorAll('a, button, input, svg, nav')).filter((each) =>
  !(each.textContent.trim() || each.getAttribute('aria-label') || each.labels?.length))
  .map((each) => each.outerHTML)"""

REPEATED_IDS = """(() => {
  const ids = Array.from(document.querySelectorAll('[id]'), (each) => each.id);
  return ids.filter((id, place) => ids.indexOf(id) !== place);
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
