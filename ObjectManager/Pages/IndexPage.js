'use strict';

(() => {
  const byId = (id) => document.getElementById(id);
  const search = byId('search');
  const filter = byId('filter');
  const count = byId('count');
  const list = byId('list');
  const buttons = { list: byId('list-view'), tree: byId('tree-view') };
  const total = list.querySelectorAll('li').length;

  // How many results are shown at once, and how many matches of each.
  const kResults = 40;
  const kMatches = 4;

  const make = (name, properties, ...children) => {
    const element = Object.assign(document.createElement(name), properties);
    element.append(...children);
    return element;
  };
  const counted = (number, singular, plural) =>
    `${number.toLocaleString('en')} ${number === 1 ? singular : plural}`;

  // The links to both documents of the class with a page at `page`.
  const documentLinks = (page, name) => {
    const document = page.replace(/^-\//, '').replace(/\.html$/, '');
    const link = (suffix, text) => make('a', { href: document + suffix, ariaLabel: `${text} of ${name}` }, text);
    return make('span', { className: 'documents' }, link('.wsdl', 'WSDL'), ' ', link('.xsd', 'XSD'));
  };

  // What is searched. Until the data are there, the names that the page lists.
  let namespaces = Array.from(list.querySelectorAll('section'), (section) => ({
    name: section.querySelector('h2').firstChild.data.trim(),
    classes: Array.from(section.querySelectorAll('li > a'), (link) => ({
      name: link.textContent, lower: link.textContent.toLowerCase(),
      page: link.getAttribute('href'), superclass: '', above: undefined, description: '', about: '',
      members: [], text: link.textContent.toLowerCase(),
    })),
  }));
  let state = 'names';  // then 'loading', and 'all' or 'failed'

  const kinds = ['property', 'method'];
  const classFrom = (pages, suffix) => ([name, superclass, description, members]) => {
    const known = members.map(([member, kind, text]) => ({
      name: member, lower: member.toLowerCase(), kind: kinds[kind], description: text,
      text: text.toLowerCase(),
    }));
    const entry = {
      name, superclass, description, lower: name.toLowerCase(),
      about: description.toLowerCase(), page: pages + encodeURIComponent(name) + suffix, members: known,
    };
    entry.text = [entry.lower, entry.about, ...known.flatMap(({ lower, text }) => [lower, text])].join('\n');
    return entry;
  };

  // A superclass may be missing: the namespace leaves out classes with too large documents.
  const related = (classes) => {
    const byName = new Map(classes.map((each) => [each.lower, each]));
    for (const each of classes) each.above = byName.get(each.superclass.toLowerCase());
    return classes;
  };

  window.teskClasses = (data) => {
    namespaces = data.namespaces.map(({ name, pages, classes }) => ({
      name, classes: related(classes.map(classFrom(pages, data.suffix))),
    }));
    state = 'all';
  };

  const load = () => {
    if (state !== 'names') return;
    state = 'loading';
    const script = make('script', { src: search.dataset.source });
    const finish = () => {
      if (state === 'loading') state = 'failed';
      show();
    };
    script.addEventListener('load', finish);
    script.addEventListener('error', finish);
    document.head.append(script);
  };

  // Whether a code unit is a lower-case letter of ASCII, a digit or an underscore.
  const isInWord = (code) => (code >= 97 && code <= 122) || (code >= 48 && code <= 57) || code === 95;

  // How good a match is, the best first: the whole name, its start, the start of a word, anywhere.
  // CIM names put a schema before the name proper, and words together with capitals.
  const kWhole = 0;
  const kStart = 1;
  const kWord = 2;
  const kInside = 3;
  const rankInName = (name, lower, word) => {
    let at = lower.indexOf(word);
    if (at < 0) return -1;
    const proper = lower.indexOf('_') + 1;
    let rank = kInside;
    for (; at >= 0 && rank > kStart; at = lower.indexOf(word, at + 1)) {
      if (at === 0 || at === proper) rank = at + word.length === lower.length ? kWhole : kStart;
      else if (name[at] !== lower[at] || !isInWord(lower.charCodeAt(at - 1))) rank = kWord;
    }
    return rank;
  };
  // A text is long, so that a few places must do.
  const rankInText = (text, word) => {
    let at = text.indexOf(word);
    if (at < 0) return -1;
    for (let tries = 8; at >= 0 && tries > 0; tries -= 1, at = text.indexOf(word, at + 1)) {
      if (at === 0 || !isInWord(text.charCodeAt(at - 1))) return kWord;
    }
    return kInside;
  };

  // Of equal ranks, classes come before members, and names before descriptions.
  const score = (rank, place) => (rank < 0 ? Infinity : 4 * rank + place);
  const scoreOfMember = (member, word) => {
    const inName = rankInName(member.name, member.lower, word);
    return inName >= 0 ? score(inName, 1) : score(rankInText(member.text, word), 3);
  };

  // Of a class for one word, which its text includes. Descriptions, which take most of the time,
  // are read only where they could be better than the names.
  const scoreOfClass = (entry, word) => {
    let best = score(rankInName(entry.name, entry.lower, word), 0);
    for (const member of entry.members) {
      if (best <= score(kWhole, 1)) return best;
      best = Math.min(best, score(rankInName(member.name, member.lower, word), 1));
    }
    if (best <= score(kWord, 2)) return best;
    best = Math.min(best, score(rankInText(entry.about, word), 2));
    for (const member of entry.members) {
      if (best <= score(kWord, 3)) return best;
      best = Math.min(best, score(rankInText(member.text, word), 3));
    }
    return best;
  };

  // The classes that have all words, the best first.
  const find = (words) => {
    const found = [];
    for (const { name, classes } of namespaces) {
      for (const entry of classes) {
        if (!words.every((word) => entry.text.includes(word))) continue;
        let value = 0;
        for (const word of words) value += scoreOfClass(entry, word);
        found.push({ entry, value, namespace: name });
      }
    }
    // What a class overrides is looked for at the class that has it first.
    const values = new Map(found.map(({ entry, value }) => [entry, value]));
    for (const each of found) {
      let above = each.entry.above;
      while (above && values.get(above) !== each.value) above = above.above;
      each.isBelow = above ? 1 : 0;
    }
    const order = (one, other) => one.value - other.value || one.isBelow - other.isBelow ||
      one.entry.name.length - other.entry.name.length || (one.entry.lower < other.entry.lower ? -1 : 1);
    return found.sort(order);
  };

  // The members with one of the words, the best first.
  const matchingMembers = (entry, words) => entry.members
    .map((member) => ({ member, value: Math.min(...words.map((word) => scoreOfMember(member, word))) }))
    .filter(({ value }) => value < Infinity)
    .sort((one, other) => one.value - other.value);

  // A text with the words marked in it.
  const marked = (text, words) => {
    const lower = text.toLowerCase();
    const parts = [];
    let from = 0;
    while (from < text.length) {
      let next = -1;
      let length = 0;
      for (const word of words) {
        const at = lower.indexOf(word, from);
        if (at >= 0 && (next < 0 || at < next || (at === next && word.length > length))) {
          next = at;
          length = word.length;
        }
      }
      if (next < 0) break;
      parts.push(text.slice(from, next), make('mark', {}, text.slice(next, next + length)));
      from = next + length;
    }
    parts.push(text.slice(from));
    return parts;
  };

  // What stands around the first word in a description; its beginning where there is none.
  const around = (text, words) => {
    const lower = text.toLowerCase();
    const places = words.map((word) => lower.indexOf(word)).filter((at) => at >= 0);
    const begin = places.length === 0 ? 0 : Math.max(0, Math.min(...places) - 60);
    const part = text.slice(begin, begin + 160);
    return `${begin > 0 ? '…' : ''}${part}${begin + 160 < text.length ? '…' : ''}`;
  };

  const memberItem = (page, { name, kind, description }, words) => make('li', {},
    make('a', { href: `${page}#${kind}-${encodeURIComponent(name)}` }, ...marked(name, words)),
    make('small', {}, ` ${kind} `), ...marked(around(description, words), words));

  const resultItem = ({ entry, namespace }, words) => {
    const item = make('li', {}, make('a', { href: entry.page }, ...marked(entry.name, words)),
      documentLinks(entry.page, entry.name));
    const about = [entry.superclass && `extends ${entry.superclass}`,
      namespaces.length > 1 && `in ${namespace}`].filter(Boolean).join(', ');
    if (about) item.append(make('small', {}, about));
    if (entry.description) item.append(make('p', {}, ...marked(around(entry.description, words), words)));
    const members = matchingMembers(entry, words);
    const shown = members.slice(0, kMatches);
    if (shown.length > 0) {
      const inside = make('ul', {}, ...shown.map(({ member }) => memberItem(entry.page, member, words)));
      const left = members.length - shown.length;
      if (left > 0) inside.append(make('li', {}, make('small', {}, `and ${left.toLocaleString('en')} more`)));
      item.append(inside);
    }
    return item;
  };

  const results = make('div', { id: 'results', hidden: true });
  const tree = make('div', { id: 'tree', hidden: true });
  list.after(results, tree);

  const showResults = (words) => {
    const found = find(words);
    const items = make('ul', {}, ...found.slice(0, kResults).map((each) => resultItem(each, words)));
    results.replaceChildren(items);
    if (found.length > kResults) {
      const more = make('button', { type: 'button' }, `Show all ${counted(found.length, 'class', 'classes')}`);
      more.addEventListener('click', () => {
        const rest = found.slice(kResults).map((each) => resultItem(each, words));
        items.append(...rest);
        more.remove();
        rest[0].querySelector('a').focus();
      });
      results.append(more);
    }
    if (found.length === 0) {
      results.append(make('p', {}, `Nothing matches “${filter.value.trim()}”. A class is found when all `
        + 'words are in its name, its description or its own members.'));
    }
    count.textContent = `${found.length.toLocaleString('en')} of ${counted(total, 'class', 'classes')}`;
  };

  // A class in the tree; what extends it is made when somebody looks.
  const treeItem = (entry, subclasses) => {
    const below = subclasses.get(entry);
    const link = make('a', { href: entry.page }, entry.name);
    if (!below) return make('li', {}, link);
    const inside = make('ul', {});
    const details = make('details', {},
      make('summary', {}, link, make('small', {}, ` ${below.length.toLocaleString('en')}`)), inside);
    details.addEventListener('toggle', () => {
      if (inside.childElementCount === 0) inside.append(...below.map((each) => treeItem(each, subclasses)));
    });
    return make('li', {}, details);
  };

  const makeTree = () => {
    tree.replaceChildren(...namespaces.map(({ name, classes }) => {
      const subclasses = new Map();
      const sorted = [...classes].sort((one, other) => (one.lower < other.lower ? -1 : 1));
      for (const entry of sorted) {
        if (!subclasses.has(entry.above)) subclasses.set(entry.above, []);
        subclasses.get(entry.above).push(entry);
      }
      const roots = subclasses.get(undefined) || [];
      return make('section', {}, make('h2', {}, name),
        make('ul', {}, ...roots.map((each) => treeItem(each, subclasses))));
    }));
  };

  let view = 'list';
  const wordsOf = () => filter.value.toLowerCase().split(/\s+/).filter(Boolean);
  const show = () => {
    const words = wordsOf();
    const shown = words.length > 0 ? 'results' : view;
    if (shown === 'results') showResults(words);
    else count.textContent = counted(total, 'class', 'classes');
    if (state === 'loading') count.textContent += ', loading the rest …';
    if (state === 'failed') count.textContent += '; only names are searched';
    if (shown === 'tree' && state === 'all' && tree.childElementCount === 0) makeTree();
    list.hidden = shown !== 'list' && !(shown === 'tree' && state !== 'all');
    results.hidden = shown !== 'results';
    tree.hidden = shown !== 'tree';
  };
  const setView = (name) => {
    view = name;
    for (const [each, button] of Object.entries(buttons)) button.ariaPressed = String(each === name);
    filter.value = '';
    if (name === 'tree') load();
    show();
  };

  const readAddress = () => {
    const shared = new URLSearchParams(location.hash.slice(1)).get('filter');
    if (shared === null) return;
    filter.value = shared;
    if (wordsOf().length > 0) load();
    show();
  };

  // Browsers take it amiss when the address changes with every key.
  let writing = 0;
  const writeAddress = () => {
    clearTimeout(writing);
    writing = setTimeout(() => {
      const value = filter.value.trim();
      const fragment = value === '' ? '' : `#filter=${encodeURIComponent(value)}`;
      history.replaceState(null, '', location.pathname + location.search + fragment);
    }, 300);
  };

  // The arrows go through the classes and members that are shown, from the search and back to it.
  const targets = () => Array.from(document.querySelectorAll(
    '#list:not([hidden]) li > a, #results:not([hidden]) li > a, #tree:not([hidden]) li a'))
    .filter((link) => link.checkVisibility === undefined || link.checkVisibility());
  const step = (by) => {
    const links = targets();
    const next = links.indexOf(document.activeElement) + by;
    const target = next < 0 ? filter : links[Math.min(next, links.length - 1)];
    if (target) target.focus();
  };
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const isTyping = event.target === filter;
    const isOnLink = event.target.matches('main li a');
    if (event.key === '/' && !isTyping) {
      filter.focus();
      filter.select();
    } else if (event.key === 'Enter' && isTyping) {
      const [first] = targets();
      if (first && wordsOf().length > 0) first.click();
    } else if (event.key === 'Escape' && (isTyping || isOnLink)) {
      filter.value = '';
      filter.focus();
      show();
      writeAddress();
    } else if ((event.key === 'ArrowDown' || event.key === 'ArrowUp') && (isTyping || isOnLink)) {
      step(event.key === 'ArrowDown' ? 1 : -1);
    } else {
      return;
    }
    event.preventDefault();
  });

  filter.addEventListener('focus', load);
  filter.addEventListener('input', () => {
    load();
    show();
    writeAddress();
  });
  buttons.list.addEventListener('click', () => setView('list'));
  buttons.tree.addEventListener('click', () => setView('tree'));
  window.addEventListener('hashchange', readAddress);
  // Also when the browser brings back the page, and what was typed, without loading it.
  window.addEventListener('pageshow', () => {
    if (wordsOf().length > 0) load();
    show();
  });
  search.hidden = false;
  readAddress();
  show();

  // Not before somebody can type.
  const idle = window.requestIdleCallback || setTimeout;
  idle(() => {
    for (const link of list.querySelectorAll('li > a'))
      link.after(documentLinks(link.getAttribute('href'), link.textContent));
  });
})();
